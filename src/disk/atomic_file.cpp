#include "disk/atomic_file.h"

#include <fcntl.h>
#include <stdlib.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <string>

#include "failure.h"

namespace keplo {

namespace {

class FileDescriptor {
 public:
  explicit FileDescriptor(int number) : number_(number) {}
  ~FileDescriptor() {
    if (number_ >= 0) close(number_);
  }
  FileDescriptor(const FileDescriptor&) = delete;
  FileDescriptor& operator=(const FileDescriptor&) = delete;
  int Number() const { return number_; }

 private:
  int number_;
};

[[noreturn]] void Fail(const std::filesystem::path& path, int error) {
  throw Failure(error, path.string() + " cannot be written: " + std::strerror(error));
}

bool WriteAll(int descriptor, std::string_view content) {
  while (!content.empty()) {
    const ssize_t written = write(descriptor, content.data(), content.size());
    if (written < 0 && errno == EINTR) continue;
    if (written <= 0) return false;
    content.remove_prefix(static_cast<std::size_t>(written));
  }
  return fsync(descriptor) == 0;
}

}  // namespace

void WriteWholeFile(const std::filesystem::path& path, std::string_view content) {
  const std::filesystem::path folder = path.has_parent_path() ? path.parent_path() : ".";
  std::error_code made;
  std::filesystem::create_directories(folder, made);
  if (made) Fail(path, made.value());

  std::string temporary = path.string() + ".XXXXXX";
  const FileDescriptor file(mkostemp(temporary.data(), O_CLOEXEC));
  if (file.Number() < 0) Fail(path, errno);
  if (!WriteAll(file.Number(), content) || rename(temporary.c_str(), path.c_str()) != 0) {
    const int error = errno;
    unlink(temporary.c_str());
    Fail(path, error);
  }
  const FileDescriptor directory(open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  if (directory.Number() >= 0) fsync(directory.Number());
}

}  // namespace keplo
