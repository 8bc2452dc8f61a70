#include "events/new_database_file.h"

#include <fcntl.h>
#include <stdio.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>

#include "events/sqlite_failure.h"
#include "failure.h"

namespace keplo {

namespace {

constexpr const char* kOwnDescriptors = "/proc/self/fd/";
constexpr mode_t kMode = 0666;  // less the umask

void Require(bool done, const std::filesystem::path& path) {
  if (done) return;
  const int number = errno;
  if (number == EEXIST) RefuseToReplace(path);
  throw Failure(
      number, DatabaseText(path.string(), "cannot be made (" + std::generic_category().message(number) + ")",
                           "Check the folder and the room on its disk."));
}

}  // namespace

void RefuseToReplace(const std::filesystem::path& path) {
  throw Failure(EEXIST, DatabaseText(path.string(), "exists already and was left as it is",
                                     "Move it away first to start with an empty one."));
}

bool NewDatabaseFile::Descriptor::Open(int number) {
  if (number_ >= 0) close(number_);
  number_ = number;
  return number_ >= 0;
}

NewDatabaseFile::NewDatabaseFile(const std::filesystem::path& target) : target_(target) {
  const std::filesystem::path folder = target.has_parent_path() ? target.parent_path() : ".";
  Require(folder_.Open(open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC)), target_);
  if (access(kOwnDescriptors, X_OK) == 0) {  // without it a nameless file could get no name
    if (file_.Open(open(folder.c_str(), O_TMPFILE | O_WRONLY | O_CLOEXEC, kMode))) return;
    Require(errno == EOPNOTSUPP || errno == EISDIR, target_);  // the file system has no files without a name
  }

  // One fixed name, so that a killed program leaves one file at most, which the next one tells of.
  const std::string name = target.string() + ".new";
  Require(file_.Open(open(name.c_str(), O_CREAT | O_EXCL | O_WRONLY | O_CLOEXEC, kMode)), name);
  temporaryName_ = name;
}

NewDatabaseFile::~NewDatabaseFile() {
  if (!temporaryName_.empty()) unlink(temporaryName_.c_str());
}

void NewDatabaseFile::Write(std::string_view bytes) {
  while (!bytes.empty()) {
    const ssize_t written = write(file_.Number(), bytes.data(), bytes.size());
    if (written < 0 && errno == EINTR) continue;
    Require(written >= 0, target_);
    bytes.remove_prefix(static_cast<std::size_t>(written));
  }
}

void NewDatabaseFile::TakePlace() {
  Require(fsync(file_.Number()) == 0, target_);
  Require(TakeName(), target_);
  // A file system that cannot flush a folder says EINVAL and keeps its names in order by itself.
  Require(fsync(folder_.Number()) == 0 || errno == EINVAL, target_);
}

bool NewDatabaseFile::TakeName() const {
  if (temporaryName_.empty()) {
    const std::string byDescriptor = std::string(kOwnDescriptors) + std::to_string(file_.Number());
    return linkat(AT_FDCWD, byDescriptor.c_str(), AT_FDCWD, target_.c_str(), AT_SYMLINK_FOLLOW) == 0;
  }
  if (renameat2(AT_FDCWD, temporaryName_.c_str(), AT_FDCWD, target_.c_str(), RENAME_NOREPLACE) == 0)
    return true;
  const bool unknownToFileSystem = errno == EINVAL || errno == ENOSYS;
  return unknownToFileSystem && link(temporaryName_.c_str(), target_.c_str()) == 0;
}

}  // namespace keplo
