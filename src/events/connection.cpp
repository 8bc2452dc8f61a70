#include "events/connection.h"

#include <sqlite3.h>
#include <sys/stat.h>

#include <filesystem>
#include <thread>
#include <utility>

#include "events/database_check.h"
#include "events/failure_numbers.h"
#include "events/sqlite_failure.h"
#include "events/sqlite_statement.h"

namespace keplo {

namespace {

// Far longer than any event; a damaged length in the file must not exhaust the memory.
constexpr int kLongestRow = 1'000'000;  // bytes

// A change is made once its journal is deleted, so the folder is flushed after that as well: otherwise a
// power cut could bring back the journal, which would undo a change that was reported to the host.
constexpr const char* kSettings = "pragma synchronous = extra";

constexpr std::chrono::milliseconds kLockRetry{5};

/// Leaves write-ahead mode, in which another tool may have left the file: in SQLite 3.40 it is not safe when
/// two programs write. A rollback journal is.
/// @return false while another program keeps the file in write-ahead mode
bool SwitchToRollbackJournal(sqlite3* database) try {
  return FirstText(database, "pragma journal_mode") == "delete" ||
         FirstText(database, "pragma journal_mode = delete") == "delete";
} catch (const Failure& failure) {
  if ((failure.Number() & 0xFF) == SQLITE_BUSY) return false;
  throw;
}

void Rollback(sqlite3* database) { sqlite3_exec(database, "rollback", nullptr, nullptr, nullptr); }

std::int64_t DataVersionOf(sqlite3* database) { return FirstNumber(database, "pragma data_version"); }

void SetBusyTimeout(sqlite3* database, std::chrono::milliseconds timeout) {
  sqlite3_busy_timeout(database, static_cast<int>(timeout.count()));
}

/// During its lifetime, calls that meet a lock fail at once.
class NoWaiting {
 public:
  NoWaiting(sqlite3* database, std::chrono::milliseconds usual) : database_(database), usual_(usual) {
    SetBusyTimeout(database_, std::chrono::milliseconds::zero());
  }
  ~NoWaiting() { SetBusyTimeout(database_, usual_); }
  NoWaiting(const NoWaiting&) = delete;
  NoWaiting& operator=(const NoWaiting&) = delete;

 private:
  sqlite3* database_;
  std::chrono::milliseconds usual_;
};

}  // namespace

std::optional<Connection::FileNumber> Connection::FileAtPath() const {
  struct stat status {};
  if (stat(connectionString_.c_str(), &status) != 0) return std::nullopt;
  return FileNumber{status.st_dev, status.st_ino};
}

bool Connection::FileWasReplaced() const {
  const std::optional<FileNumber> now = FileAtPath();
  return State() != 0 && now && openedFile_ && *now != *openedFile_;
}

std::optional<bool> Connection::ChangedElsewhere() try {
  sqlite3* database = Database();
  const NoWaiting noWaiting(database, busyTimeout_);
  const std::int64_t version = DataVersionOf(database);
  return std::exchange(dataVersion_, version) != version;
} catch (const Failure& failure) {
  if ((failure.Number() - kSqliteFailures) % 256 == SQLITE_BUSY) return std::nullopt;
  throw;
}

void Connection::Open(const std::string& connectionString) { Open(connectionString, busyTimeout_); }

void Connection::OpenWithoutWaiting(const std::string& connectionString) {
  Open(connectionString, std::chrono::milliseconds::zero());
}

void Connection::Open(const std::string& connectionString, std::chrono::milliseconds timeout) {
  if (State() != 0) {
    throw Failure(kObjectOpen, DatabaseText(connectionString_, "is open already", "Close it first."));
  }
  // An absolute path stays valid if the working directory changes, and is never taken for a "file:" URI.
  if (!connectionString.empty()) connectionString_ = std::filesystem::absolute(connectionString);
  if (connectionString_.empty()) {
    throw Failure(kObjectClosed, "Expected the path of the event database to open, but it is empty");
  }
  try {
    openFailure_.reset();
    SqliteHandle database = OpenDatabase(timeout);
    openedFile_ = FileAtPath();
    dataVersion_ = DataVersionOf(database.get());
    SetBusyTimeout(database.get(), busyTimeout_);
    database_ = std::move(database);
  } catch (const Failure& failure) {
    openFailure_ = failure;
    throw;
  }
}

SqliteHandle Connection::OpenDatabase(std::chrono::milliseconds timeout) const {
  sqlite3* opened = nullptr;
  const int code = sqlite3_open_v2(connectionString_.c_str(), &opened, SQLITE_OPEN_READWRITE, nullptr);
  SqliteHandle database(opened);
  if (opened == nullptr)
    throw Failure(SqliteFailureNumber(SQLITE_NOMEM), "Not enough memory to open " + connectionString_);
  if (code != SQLITE_OK) throw FailureOf(opened, connectionString_);
  SetBusyTimeout(opened, timeout);
  sqlite3_limit(opened, SQLITE_LIMIT_LENGTH, kLongestRow);
  // The schema of a file from elsewhere must not run functions.
  sqlite3_db_config(opened, SQLITE_DBCONFIG_TRUSTED_SCHEMA, 0, nullptr);
  CheckIsEventDatabase(opened, connectionString_);
  LeaveWriteAheadMode(opened, timeout);
  CheckIsWhole(opened, connectionString_);
  RunSql(opened, kSettings);
  return database;
}

void Connection::LeaveWriteAheadMode(sqlite3* database, std::chrono::milliseconds timeout) const {
  using Clock = std::chrono::steady_clock;
  const Clock::time_point end = Clock::now() + timeout;
  while (!SwitchToRollbackJournal(database)) {  // SQLite itself does not wait for this
    if (Clock::now() >= end) {
      throw Failure(SqliteFailureNumber(SQLITE_BUSY),
                    DatabaseText(connectionString_, "is open in another program in write-ahead mode",
                                 "Close the other program, then try again."));
    }
    std::this_thread::sleep_for(kLockRetry);
  }
}

void Connection::Execute(const std::string& sql) {
  sqlite3* database = Database();
  const bool betweenTransactions = sqlite3_get_autocommit(database) != 0;
  try {
    RunSql(database, sql.c_str());
  } catch (...) {
    if (betweenTransactions) Rollback(database);
    throw;
  }
}

sqlite3* Connection::Database() const {
  if (database_ != nullptr) return database_.get();
  if (openFailure_) throw Failure(*openFailure_);
  throw Failure(kObjectClosed, "The event database is closed. Open it first.");
}

}  // namespace keplo
