#include "events/sqlite_handle.h"

#include <sqlite3.h>

#include "events/sqlite_failure.h"

namespace keplo {

void SqliteCloser::operator()(sqlite3* database) const { sqlite3_close_v2(database); }

void RunSql(sqlite3* database, const char* sql) {
  if (sqlite3_exec(database, sql, nullptr, nullptr, nullptr) != SQLITE_OK) throw FailureOf(database);
}

}  // namespace keplo
