#include "config/posix_file_system.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <system_error>
#include <utility>

#include "failure.h"

namespace keplo {

namespace {

using std::filesystem::path;

constexpr int kMostLinks = 40;  // as many as the kernel follows
constexpr mode_t kPermissions = 07777;

[[noreturn]] void Fail(int error, const path& name) {
  throw Failure(error, name.string() + ": " + std::generic_category().message(error));
}

void Require(bool done, const path& name) {
  if (!done) Fail(errno, name);
}

class Descriptor {
 public:
  explicit Descriptor(int number) : number_(number) {}
  Descriptor(Descriptor&& other) noexcept : number_(std::exchange(other.number_, -1)) {}
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;
  Descriptor& operator=(Descriptor&&) = delete;
  ~Descriptor() {
    if (number_ >= 0) close(number_);
  }

  int Number() const { return number_; }
  bool IsOpen() const { return number_ >= 0; }

 private:
  int number_;
};

struct stat StatusOf(int descriptor, const path& name) {
  struct stat status {};
  Require(fstat(descriptor, &status) == 0, name);
  return status;
}

Descriptor OpenToRead(const path& name) {
  // Without O_NONBLOCK a pipe in the place of the file would hold up the start for good.
  Descriptor file(open(name.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
  Require(file.IsOpen(), name);
  const mode_t mode = StatusOf(file.Number(), name).st_mode;
  if (S_ISDIR(mode)) Fail(EISDIR, name);
  if (!S_ISREG(mode)) throw Failure(EINVAL, name.string() + ": not a regular file");
  return file;
}

class PosixFolder : public LockedFolder {
 public:
  explicit PosixFolder(const path& name)
      : name_(name), folder_(open(name.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC)) {
    Require(folder_.IsOpen(), name_);
    int result = 0;
    do result = flock(folder_.Number(), LOCK_EX);
    while (result != 0 && errno == EINTR);
    // Some network file systems lock no folders; there the lock is left out.
  }

  void Flush() override {
    // A file system that cannot flush a folder says EINVAL and keeps its names in order by itself.
    Require(fsync(folder_.Number()) == 0 || errno == EINVAL, name_);
  }

 private:
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
    if (own.st_uid != attributes.Owner || own.st_gid != attributes.Group) {
      const int result = fchown(file_.Number(), attributes.Owner, attributes.Group);
      Require(result == 0 || errno == EPERM, name_);
    }
    Require(fchmod(file_.Number(), attributes.Mode) == 0, name_);
  }

  void Flush() override { Require(fsync(file_.Number()) == 0, name_); }

  void Publish() override {
    if (unpublished_ == Unpublished::Named) return;
    const std::string byDescriptor = "/proc/self/fd/" + std::to_string(file_.Number());
    Require(linkat(AT_FDCWD, byDescriptor.c_str(), AT_FDCWD, name_.c_str(), AT_SYMLINK_FOLLOW) == 0, name_);
  }

 private:
  path name_;
  Descriptor file_;
  Unpublished unpublished_;
};

path FolderOf(const path& name) { return name.has_parent_path() ? name.parent_path() : "."; }

}  // namespace

std::uintmax_t PosixFileSystem::Size(const path& path) {
  return static_cast<std::uintmax_t>(StatusOf(OpenToRead(path).Number(), path).st_size);
}

std::string PosixFileSystem::Read(const path& path, std::size_t most) {
  const Descriptor file = OpenToRead(path);
  std::string content(most, '\0');
  std::size_t length = 0;
  while (length < most) {
    const ssize_t got = read(file.Number(), content.data() + length, most - length);
    if (got < 0 && errno == EINTR) continue;
    Require(got >= 0, path);
    if (got == 0) break;
    length += static_cast<std::size_t>(got);
  }
  content.resize(length);
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

std::optional<FileAttributes> PosixFileSystem::Attributes(const path& path) {
  struct stat status {};
  if (stat(path.c_str(), &status) != 0) {
    if (errno == ENOENT) return std::nullopt;
    Fail(errno, path);
  }
  if (S_ISDIR(status.st_mode)) Fail(EISDIR, path);
  const bool writable = faccessat(AT_FDCWD, path.c_str(), W_OK, AT_EACCESS) == 0;
  return FileAttributes{status.st_mode & kPermissions, status.st_uid, status.st_gid, writable};
}

std::unique_ptr<LockedFolder> PosixFileSystem::Lock(const path& folder) {
  return std::make_unique<PosixFolder>(folder);
}

std::unique_ptr<NewFile> PosixFileSystem::Create(const path& path, unsigned mode) {
  if (unpublished_ == Unpublished::Nameless) {
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

void PosixFileSystem::Remove(const path& path) {
  Require(unlink(path.c_str()) == 0 || errno == ENOENT, path);
}

}  // namespace keplo
