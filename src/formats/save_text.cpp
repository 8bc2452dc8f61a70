#include "formats/save_text.h"

#include "disk/posix_file_system.h"
#include "disk/replace_file.h"

namespace keplo {

void SaveText(const std::string& path, std::string_view text, const std::string& advice) try {
  PosixFileSystem files;
  ReplaceFile(files, path, text)->Flush();
} catch (const Failure& cause) {
  const Failure failure = CannotBeWritten(path, cause);
  throw Failure(failure.Number(), std::string(failure.what()) + ". " + advice);
}

}  // namespace keplo
