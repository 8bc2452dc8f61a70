#include "disk/new_file_check.h"

#include <fcntl.h>

#include <cerrno>

#include "disk/descriptor.h"

namespace keplo {

int NewFileError(const std::filesystem::path& folder) {
  const Descriptor nameless(open(folder.c_str(), O_TMPFILE | O_WRONLY | O_CLOEXEC, 0600));
  const bool unsupported = errno == EOPNOTSUPP || errno == EISDIR;
  return nameless.IsOpen() || unsupported ? 0 : errno;
}

}  // namespace keplo
