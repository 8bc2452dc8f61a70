#include "events/transaction.h"

#include <sqlite3.h>

#include "events/sqlite_handle.h"

namespace keplo {

Transaction::Transaction(sqlite3* database) : database_(database) { RunSql(database, "begin immediate"); }

Transaction::~Transaction() {
  // SQLite has gone back to autocommit by itself after some failures; there is nothing left to undo then.
  const bool pending = sqlite3_get_autocommit(database_) == 0;
  if (pending) sqlite3_exec(database_, "rollback", nullptr, nullptr, nullptr);
}

void Transaction::Commit() { RunSql(database_, "commit"); }

}  // namespace keplo
