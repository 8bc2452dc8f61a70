#include "disk/posix_file_system.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstdio>
#include <system_error>
#include <thread>
#include <utility>

#include "disk/descriptor.h"
#include "failure.h"

namespace keplo {

namespace {

using std::filesystem::path;

constexpr int kMostLinks = 40;  // the kernel's limit
constexpr mode_t kPermissions = 07777;
constexpr char kOwnDescriptors[] = "/proc/self/fd/";
constexpr std::size_t kReadBlock = 65536;  // bytes
constexpr std::chrono::milliseconds kBetweenLockTries{1};

[[noreturn]] void Fail(int error, const path& name) {
  throw Failure(error, name.string() + ": " + std::generic_category().message(error));
}

void Require(bool done, const path& name) {
  if (!done) Fail(errno, name);
}

struct stat StatusOf(int descriptor, const path& name) {
  struct stat status {};
  Require(fstat(descriptor, &status) == 0, name);
  return status;
}

void RequireRegular(mode_t mode, const path& name) {
  if (S_ISDIR(mode)) Fail(EISDIR, name);
  if (!S_ISREG(mode)) throw Failure(EINVAL, name.string() + ": not a regular file");
}

Descriptor OpenToRead(const path& name) {
  // Without O_NONBLOCK, opening a pipe would block forever.
  Descriptor file(open(name.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
  Require(file.IsOpen(), name);
  RequireRegular(StatusOf(file.Number(), name).st_mode, name);
  return file;
}

class PosixFolder : public LockedFolder {
 public:
  PosixFolder(const path& name, std::chrono::milliseconds timeout)
      : name_(name), folder_(open(name.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC)) {
    Require(folder_.IsOpen(), name_);
    const auto end = std::chrono::steady_clock::now() + timeout;
    while (IsHeldByAnother()) {
      if (std::chrono::steady_clock::now() >= end) {
        throw Failure(EWOULDBLOCK, name_.string() + ": another program has been saving in this folder for " +
                                       std::to_string(timeout.count()) + " ms. \"fuser -v " + name_.string() +
                                       "\" tells which; end it if it does not go on, and try again");
      }
      std::this_thread::sleep_for(kBetweenLockTries);
    }
  }

  void Flush() override {
    // EINVAL means that the file system cannot flush folders and does not need to.
    Require(fsync(folder_.Number()) == 0 || errno == EINVAL, name_);
  }

 private:
  /// Takes the lock if it is free. Some network file systems cannot lock folders; other errors are ignored.
  bool IsHeldByAnother() const {
    return flock(folder_.Number(), LOCK_EX | LOCK_NB) != 0 && (errno == EWOULDBLOCK || errno == EINTR);
  }

  path name_;
  Descriptor folder_;
};

class PosixNewFile : public NewFile {
 public:
  PosixNewFile(const path& name, Descriptor file, Unpublished unpublished)
      : name_(name), file_(std::move(file)), unpublished_(unpublished) {}

  void Write(std::string_view content) override {
    while (!content.empty()) {
      const ssize_t written = write(file_.Number(), content.data(), content.size());
      if (written < 0 && errno == EINTR) continue;
      Require(written >= 0, name_);
      content.remove_prefix(static_cast<std::size_t>(written));
    }
  }

  void SetAttributes(const FileAttributes& attributes) override {
    const struct stat own = StatusOf(file_.Number(), name_);
    const bool foreign = own.st_uid != attributes.Owner || own.st_gid != attributes.Group;
    if (foreign && !GiveTo(attributes.Owner, attributes.Group)) GiveTo(kUnchanged, attributes.Group);
    const struct stat kept = StatusOf(file_.Number(), name_);
    mode_t mode = attributes.Mode;
    if (kept.st_uid != attributes.Owner) mode &= ~static_cast<mode_t>(S_ISUID);
    if (kept.st_gid != attributes.Group) mode = WithGroupAsOthers(mode);
    Require(fchmod(file_.Number(), mode) == 0, name_);
  }

  void Flush() override { Require(fsync(file_.Number()) == 0, name_); }

  void Publish() override {
    if (unpublished_ == Unpublished::Named) return;
    const std::string byDescriptor = kOwnDescriptors + std::to_string(file_.Number());
    Require(linkat(AT_FDCWD, byDescriptor.c_str(), AT_FDCWD, name_.c_str(), AT_SYMLINK_FOLLOW) == 0, name_);
  }

 private:
  static constexpr unsigned kUnchanged = ~0U;

  /// @return false if that is not permitted or not supported
  bool GiveTo(unsigned owner, unsigned group) const {
    const bool given = fchown(file_.Number(), owner, group) == 0;
    // The last three are for owners unknown to a user namespace, and for file systems without owners.
    Require(given || errno == EPERM || errno == EINVAL || errno == EOPNOTSUPP || errno == ENOSYS, name_);
    return given;
  }

  static mode_t WithGroupAsOthers(mode_t mode) {
    const mode_t groupMay = (mode & S_IRWXG) & ((mode & S_IRWXO) << 3);
    return (mode & ~static_cast<mode_t>(S_IRWXG | S_ISGID)) | groupMay;
  }

  path name_;
  Descriptor file_;
  Unpublished unpublished_;
};

}  // namespace

std::uintmax_t PosixFileSystem::Size(const path& path) {
  return static_cast<std::uintmax_t>(StatusOf(OpenToRead(path).Number(), path).st_size);
}

std::string PosixFileSystem::Read(const path& path, std::size_t most) {
  const Descriptor file = OpenToRead(path);
  std::string content;
  while (content.size() < most) {
    const std::size_t length = content.size();
    content.resize(length + std::min(kReadBlock, most - length));
    const ssize_t got = read(file.Number(), content.data() + length, content.size() - length);
    content.resize(length + static_cast<std::size_t>(std::max<ssize_t>(got, 0)));
    if (got < 0 && errno == EINTR) continue;
    Require(got >= 0, path);
    if (got == 0) break;
  }
  return content;
}

path PosixFileSystem::Resolve(const path& path) {
  std::filesystem::path target = path;
  std::error_code error;
  for (int links = 0; std::filesystem::is_symlink(target, error); ++links) {
    if (links == kMostLinks) Fail(ELOOP, path);
    const std::filesystem::path next = std::filesystem::read_symlink(target, error);
    if (error) Fail(error.value(), target);
    target = target.parent_path() / next;
  }
  return target;
}

std::optional<FileIdentity> PosixFileSystem::Identity(const path& path) {
  constexpr std::int64_t kNsPerSecond = 1'000'000'000;
  struct stat status {};
  if (stat(path.c_str(), &status) != 0) return std::nullopt;
  return FileIdentity{status.st_dev, status.st_ino, static_cast<std::uint64_t>(status.st_size),
                      status.st_mtim.tv_sec * kNsPerSecond + status.st_mtim.tv_nsec};
}

std::optional<FileAttributes> PosixFileSystem::Attributes(const path& path) {
  struct stat status {};
  if (stat(path.c_str(), &status) != 0) {
    if (errno == ENOENT) return std::nullopt;
    Fail(errno, path);
  }
  RequireRegular(status.st_mode, path);
  const bool writable = faccessat(AT_FDCWD, path.c_str(), W_OK, AT_EACCESS) == 0;
  return FileAttributes{status.st_mode & kPermissions, status.st_uid, status.st_gid, writable};
}

std::unique_ptr<LockedFolder> PosixFileSystem::Lock(const path& folder) {
  return std::make_unique<PosixFolder>(folder, lockTimeout_);
}

bool PosixFileSystem::MakeFolder(const path& folder) {
  constexpr mode_t kForAll = 0777;
  if (mkdir(folder.c_str(), kForAll) == 0) return true;
  Require(errno == EEXIST, folder);
  return false;
}

std::unique_ptr<NewFile> PosixFileSystem::Create(const path& path, unsigned mode) {
  // A nameless file gets its name through /proc, which may not be mounted.
  if (unpublished_ == Unpublished::Nameless && access(kOwnDescriptors, X_OK) == 0) {
    Descriptor nameless(open(FolderOf(path).c_str(), O_TMPFILE | O_WRONLY | O_CLOEXEC, mode));
    if (nameless.IsOpen())
      return std::make_unique<PosixNewFile>(path, std::move(nameless), Unpublished::Nameless);
    if (errno != EOPNOTSUPP && errno != EISDIR) Fail(errno, path);
  }
  Descriptor named(open(path.c_str(), O_CREAT | O_EXCL | O_WRONLY | O_CLOEXEC, mode));
  Require(named.IsOpen(), path);
  return std::make_unique<PosixNewFile>(path, std::move(named), Unpublished::Named);
}

void PosixFileSystem::Rename(const path& from, const path& to) {
  Require(std::rename(from.c_str(), to.c_str()) == 0, to);
}

bool PosixFileSystem::RenameToFree(const path& from, const path& to) {
  if (renameat2(AT_FDCWD, from.c_str(), AT_FDCWD, to.c_str(), RENAME_NOREPLACE) == 0) return true;
  const bool unknownToFileSystem = errno == EINVAL || errno == ENOSYS;
  if (unknownToFileSystem && link(from.c_str(), to.c_str()) == 0) {
    Remove(from);
    return true;
  }
  Require(errno == EEXIST, to);
  return false;
}

void PosixFileSystem::Remove(const path& path) {
  Require(unlink(path.c_str()) == 0 || errno == ENOENT, path);
}

}  // namespace keplo
