#include "events/event_table.h"

#include <sqlite3.h>
#include <sys/stat.h>

#include <cerrno>
#include <memory>
#include <string>
#include <system_error>

#include "disk/replace_file.h"
#include "events/event_schema.h"
#include "events/failure_numbers.h"
#include "events/sqlite_failure.h"
#include "events/sqlite_handle.h"
#include "failure.h"

namespace keplo {

namespace {

// The unique key keeps two programs from adding the same ID. Files of earlier releases lack it and stay in
// use.
constexpr const char* kCreateTable =
    "create table colclsKeploEvents ("
    " EventID text not null unique,"
    " EventName text not null,"
    " EventDescription text not null,"
    " IRCommand text not null,"
    " Enabled boolean not null,"
    " Zone smallint not null)";

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

bool IsThere(const std::string& name) {
  struct stat status {};
  return lstat(name.c_str(), &status) == 0;  // true for a dangling link as well
}

/// The files beside a database in which SQLite keeps pending changes, separated by commas.
std::string JournalsOf(const std::filesystem::path& path) {
  std::string found;
  for (const char* ending : {"-journal", "-wal", "-shm"}) {
    const std::string name = path.string() + ending;
    if (IsThere(name)) found.append(found.empty() ? "" : ", ").append(name);
  }
  return found;
}

[[noreturn]] void RefuseToReplace(const std::filesystem::path& path) {
  throw Failure(EEXIST, DatabaseText(path.string(), "exists already and was left as it is",
                                     "Move it away first to start with an empty one."));
}

/// Refuses a path where there is a file or a journal: SQLite would apply an orphaned journal to the new file,
/// and the database that it belongs to may need it.
void RequireUnusedPath(const std::filesystem::path& path) {
  const std::string journals = JournalsOf(path);  // first: another program may be creating the file just now
  if (IsThere(path.string())) RefuseToReplace(path);
  if (journals.empty()) return;
  throw Failure(EEXIST, DatabaseText(path.string(), "cannot be made beside " + journals,
                                     "The database that this belongs to is gone: put it back, or move this "
                                     "to where that database is."));
}

}  // namespace

void CreateEventTable(const std::filesystem::path& path, FileSystem& files) {
  RequireUnusedPath(path);
  const std::string empty = EmptyDatabase();
  try {
    if (!CreateFile(files, path, empty)) RefuseToReplace(path);
  } catch (const Failure& failure) {
    const bool explained = failure.Number() == EEXIST || failure.Number() == EWOULDBLOCK;
    if (explained) throw;
    const std::string reason = std::generic_category().message(failure.Number());
    throw Failure(failure.Number(), DatabaseText(path.string(), "cannot be made (" + reason + ")",
                                                 "Check the folder and the room on its disk."));
  }
}

}  // namespace keplo
