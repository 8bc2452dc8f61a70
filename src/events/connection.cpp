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

// Far above any text of an event; a damaged length in the file must not fill the memory.
constexpr int kLongestRow = 1'000'000;  // bytes

// A change counts once its journal is gone, so the folder is flushed after that too: no power cut brings the
// journal back and undoes a change that the host was told of.
constexpr const char* kSettings = "pragma synchronous = extra";

constexpr std::chrono::milliseconds kLockRetry{5};

/// The journal beside the file undoes a change that was cut short. Write-ahead mode, in which a foreign tool
/// may have left the file, is not safe in SQLite 3.40 where two programs write.
/// @return false while another program keeps the file in that mode
bool UsesRollbackJournal(sqlite3* database) try {
  return FirstText(database, "pragma journal_mode") == "delete" ||
         FirstText(database, "pragma journal_mode = delete") == "delete";
} catch (const Failure& failure) {
  if ((failure.Number() & 0xFF) == SQLITE_BUSY) return false;
  throw;
}

void UndoOpenTransaction(sqlite3* database) { sqlite3_exec(database, "rollback", nullptr, nullptr, nullptr); }

std::int64_t DataVersionOf(sqlite3* database) {
  SqliteStatement statement(database, "pragma data_version");
  if (!statement.Step()) return 0;
  const SqlValue value = statement.Value(0);
  const auto* version = std::get_if<std::int64_t>(&value);
  return version == nullptr ? 0 : *version;
}

void SetPatience(sqlite3* database, std::chrono::milliseconds patience) {
  sqlite3_busy_timeout(database, static_cast<int>(patience.count()));
}

/// Calls that meet a lock come back at once as long as one lives.
class WithoutWaiting {
 public:
  WithoutWaiting(sqlite3* database, std::chrono::milliseconds usual) : database_(database), usual_(usual) {
    SetPatience(database_, std::chrono::milliseconds::zero());
  }
  ~WithoutWaiting() { SetPatience(database_, usual_); }
  WithoutWaiting(const WithoutWaiting&) = delete;
  WithoutWaiting& operator=(const WithoutWaiting&) = delete;

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
  const WithoutWaiting atOnce(database, busyTimeout_);
  const std::int64_t version = DataVersionOf(database);
  return std::exchange(dataVersion_, version) != version;
} catch (const Failure& failure) {
  if ((failure.Number() - kSqliteFailures) % 256 == SQLITE_BUSY) return std::nullopt;
  throw;
}

void Connection::Open(const std::string& connectionString) { Open(connectionString, busyTimeout_); }

void Connection::OpenAtOnce(const std::string& connectionString) {
  Open(connectionString, std::chrono::milliseconds::zero());
}

void Connection::Open(const std::string& connectionString, std::chrono::milliseconds patience) {
  if (State() != 0) {
    throw Failure(kObjectOpen, DatabaseText(connectionString_, "is open already", "Close it first."));
  }
  // An absolute path means the same file wherever the program goes, and is never read as a "file:" address.
  if (!connectionString.empty()) connectionString_ = std::filesystem::absolute(connectionString);
  if (connectionString_.empty()) {
    throw Failure(kObjectClosed, "Expected the path of the event database to open, but it is empty");
  }
  try {
    openFailure_.reset();
    SqliteHandle database = OpenDatabase(patience);
    openedFile_ = FileAtPath();
    dataVersion_ = DataVersionOf(database.get());
    SetPatience(database.get(), busyTimeout_);
    database_ = std::move(database);
  } catch (const Failure& failure) {
    openFailure_ = failure;
    throw;
  }
}

SqliteHandle Connection::OpenDatabase(std::chrono::milliseconds patience) const {
  sqlite3* opened = nullptr;
  const int code = sqlite3_open_v2(connectionString_.c_str(), &opened, SQLITE_OPEN_READWRITE, nullptr);
  SqliteHandle database(opened);
  if (opened == nullptr)
    throw Failure(SqliteFailureNumber(SQLITE_NOMEM), "Not enough memory to open " + connectionString_);
  if (code != SQLITE_OK) throw FailureOf(opened, connectionString_);
  SetPatience(opened, patience);
  sqlite3_limit(opened, SQLITE_LIMIT_LENGTH, kLongestRow);
  sqlite3_db_config(opened, SQLITE_DBCONFIG_TRUSTED_SCHEMA, 0,
                    nullptr);  // a foreign schema runs no functions
  CheckIsEventDatabase(opened, connectionString_);
  LeaveWriteAheadMode(opened, patience);
  CheckIsWhole(opened, connectionString_);
  RunSql(opened, kSettings);
  return database;
}

void Connection::LeaveWriteAheadMode(sqlite3* database, std::chrono::milliseconds patience) const {
  using Clock = std::chrono::steady_clock;
  const Clock::time_point end = Clock::now() + patience;
  while (!UsesRollbackJournal(database)) {  // SQLite itself does not wait here
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
    if (betweenTransactions) UndoOpenTransaction(database);
    throw;
  }
}

sqlite3* Connection::Database() const {
  if (database_ != nullptr) return database_.get();
  if (openFailure_) throw Failure(*openFailure_);
  throw Failure(kObjectClosed, "The event database is closed. Open it first.");
}

}  // namespace keplo
