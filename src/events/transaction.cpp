#include "events/transaction.h"

#include <sqlite3.h>

#include "events/failure_numbers.h"
#include "events/sqlite_failure.h"
#include "events/sqlite_handle.h"

namespace keplo {

Transaction::Transaction(sqlite3* database) : database_(database) { RunSql(database, "begin immediate"); }

Transaction::~Transaction() {
  // After some failures SQLite has already rolled back by itself.
  const bool pending = sqlite3_get_autocommit(database_) == 0;
  if (pending) sqlite3_exec(database_, "rollback", nullptr, nullptr, nullptr);
}

std::optional<NotConfirmed> Transaction::Commit() try {
  RunSql(database_, "commit");
  return std::nullopt;
} catch (const Failure& failure) {
  // The journal, which would undo the change, is already deleted; only flushing its folder failed.
  if (failure.Number() != SqliteFailureNumber(SQLITE_IOERR_DIR_FSYNC)) throw;
  return NotConfirmed(failure.Number(),
                      DatabaseText(OpenFileName(database_),
                                   "is saved, but a power cut may bring the old events back (disk I/O error)",
                                   "Check the disk that it lies on."));
}

}  // namespace keplo
