#include "events/connection.h"

#include <sqlite3.h>

#include <utility>

#include "events/database_check.h"
#include "events/failure_numbers.h"
#include "events/sqlite_failure.h"

namespace keplo {

namespace {

// Far above any text of an event; a damaged length in the file must not fill the memory.
constexpr int kLongestRow = 1'000'000;  // bytes

// The journal beside the file undoes a change that was cut short, and lets two programs use the database at
// a time. A change is on the disk when it is committed.
constexpr const char* kSettings =
    "pragma journal_mode = delete;"
    "pragma synchronous = full;";

}  // namespace

void Connection::Open(const std::string& connectionString) {
  if (State() != 0) {
    throw Failure(kObjectOpen, DatabaseText(connectionString_, "is open already", "Close it first."));
  }
  if (!connectionString.empty()) connectionString_ = connectionString;
  if (connectionString_.empty()) {
    throw Failure(kObjectClosed, "Expected the path of the event database to open, but it is empty");
  }
  try {
    openFailure_.reset();
    database_ = OpenDatabase();
  } catch (const Failure& failure) {
    openFailure_ = failure;
    throw;
  }
}

SqliteHandle Connection::OpenDatabase() const {
  sqlite3* opened = nullptr;
  const int code = sqlite3_open_v2(connectionString_.c_str(), &opened, SQLITE_OPEN_READWRITE, nullptr);
  SqliteHandle database(opened);
  if (opened == nullptr)
    throw Failure(SqliteFailureNumber(SQLITE_NOMEM), "Not enough memory to open " + connectionString_);
  if (code != SQLITE_OK) throw FailureOf(opened, connectionString_);
  sqlite3_busy_timeout(opened, static_cast<int>(busyTimeout_.count()));
  sqlite3_limit(opened, SQLITE_LIMIT_LENGTH, kLongestRow);
  sqlite3_db_config(opened, SQLITE_DBCONFIG_TRUSTED_SCHEMA, 0,
                    nullptr);  // a foreign schema runs no functions
  CheckIsEventDatabase(opened, connectionString_);
  RunSql(opened, kSettings);
  return database;
}

void Connection::Execute(const std::string& sql) { RunSql(Database(), sql.c_str()); }

sqlite3* Connection::Database() const {
  if (database_ != nullptr) return database_.get();
  if (openFailure_) throw Failure(*openFailure_);
  throw Failure(kObjectClosed, "The event database is closed. Open it first.");
}

}  // namespace keplo
