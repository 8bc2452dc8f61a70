#include "events/event_table.h"

#include <fcntl.h>
#include <sqlite3.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string>
#include <system_error>

#include "events/event_schema.h"
#include "events/failure_numbers.h"
#include "events/sqlite_failure.h"
#include "events/sqlite_handle.h"
#include "failure.h"

namespace keplo {

namespace {

constexpr mode_t kFileMode = 0644;  // the learning tool of another user may read the map

// The key keeps two programs from adding one ID. Files of earlier releases lack it and stay in use.
constexpr const char* kCreateTable =
    "create table colclsKeploEvents ("
    " EventID text not null unique,"
    " EventName text not null,"
    " EventDescription text not null,"
    " IRCommand text not null,"
    " Enabled boolean not null,"
    " Zone smallint not null)";

[[noreturn]] void ThrowFileFailure(const std::filesystem::path& path) {
  const int number = errno;
  if (number == EEXIST) {
    throw Failure(number, DatabaseText(path.string(), "exists already and was left as it is",
                                       "Move it away first to start with an empty one."));
  }
  throw Failure(
      number, DatabaseText(path.string(), "cannot be made (" + std::generic_category().message(number) + ")",
                           "Check the folder and the room on its disk."));
}

/// The bytes of a database file with the empty table.
std::string EmptyDatabase() {
  sqlite3* opened = nullptr;
  const int code = sqlite3_open(":memory:", &opened);
  const SqliteHandle memory(opened);
  if (code != SQLITE_OK)
    throw Failure(SqliteFailureNumber(code), "Not enough memory to make an event database");
  RunSql(opened, ("pragma application_id = " + std::to_string(kApplicationID)).c_str());
  RunSql(opened, ("pragma user_version = " + std::to_string(kFormatVersion)).c_str());
  RunSql(opened, kCreateTable);

  sqlite3_int64 size = 0;
  const std::unique_ptr<unsigned char, void (*)(void*)> bytes(sqlite3_serialize(opened, "main", &size, 0),
                                                              sqlite3_free);
  if (bytes == nullptr)
    throw Failure(SqliteFailureNumber(SQLITE_NOMEM), "Not enough memory to make an event database");
  return {bytes.get(), bytes.get() + size};
}

/// A file beside the target, removed again unless it was put into the target's place.
class NewFile {
 public:
  explicit NewFile(const std::filesystem::path& target)
      : target_(target), name_(target.string() + ".XXXXXX"), descriptor_(mkostemp(name_.data(), O_CLOEXEC)) {
    if (descriptor_ < 0) ThrowFileFailure(target_);
  }
  ~NewFile() {
    close(descriptor_);
    unlink(name_.c_str());
  }
  NewFile(const NewFile&) = delete;
  NewFile& operator=(const NewFile&) = delete;

  void Write(const std::string& bytes) const {
    for (std::size_t done = 0; done < bytes.size();) {
      const ssize_t written = write(descriptor_, bytes.data() + done, bytes.size() - done);
      if (written < 0 && errno == EINTR) continue;
      if (written < 0) ThrowFileFailure(target_);
      done += static_cast<std::size_t>(written);
    }
    if (fchmod(descriptor_, kFileMode) != 0 || fsync(descriptor_) != 0) ThrowFileFailure(target_);
  }

  void TakePlace() const {
    if (renameat2(AT_FDCWD, name_.c_str(), AT_FDCWD, target_.c_str(), RENAME_NOREPLACE) == 0) return;
    const bool unknownToFileSystem = errno == EINVAL || errno == ENOSYS;
    if (!unknownToFileSystem || link(name_.c_str(), target_.c_str()) != 0) ThrowFileFailure(target_);
  }

 private:
  const std::filesystem::path& target_;
  std::string name_;
  int descriptor_;
};

void FlushFolderOf(const std::filesystem::path& path) {
  const std::filesystem::path folder = path.has_parent_path() ? path.parent_path() : ".";
  const int descriptor = open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  if (descriptor < 0) return;
  fsync(descriptor);  // some file systems refuse it for folders and keep them in order by themselves
  close(descriptor);
}

/// A journal whose database was deleted would be played into the new file.
void RemoveStrayJournal(const std::filesystem::path& path) {
  for (const char* ending : {"-journal", "-wal", "-shm"}) {
    const std::string name = path.string() + ending;
    if (unlink(name.c_str()) != 0 && errno != ENOENT) ThrowFileFailure(path);
  }
}

void RequireAbsent(const std::filesystem::path& path) {
  if (access(path.c_str(), F_OK) != 0) return;
  errno = EEXIST;
  ThrowFileFailure(path);
}

}  // namespace

void CreateEventTable(const std::filesystem::path& path) {
  RequireAbsent(path);
  RemoveStrayJournal(path);
  const NewFile file(path);
  file.Write(EmptyDatabase());
  file.TakePlace();
  FlushFolderOf(path);
}

}  // namespace keplo
