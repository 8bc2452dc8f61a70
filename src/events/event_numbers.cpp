#include "events/event_numbers.h"

#include "event_id.h"
#include "events/sqlite_handle.h"
#include "events/sqlite_statement.h"

namespace keplo {

void NoteUsedUp(sqlite3* database, const std::string& eventID) {
  const std::int64_t number = NumberOfEventID(eventID).value_or(0);
  if (number <= HighestUsedUp(database)) return;
  // A separate table, because other programs rely on the event table as it is.
  RunSql(database, "create table if not exists keploUsedUpIDs (Highest integer not null)");
  RunSql(database, "delete from keploUsedUpIDs");
  SqliteStatement insert(database, "insert into keploUsedUpIDs values (?1)");
  insert.Bind(1, number);
  insert.Step();
}

std::int64_t HighestUsedUp(sqlite3* database) {
  if (FirstText(database, "select name from sqlite_schema where name = 'keploUsedUpIDs'").empty()) return 0;
  return FirstNumber(database, "select Highest from keploUsedUpIDs");
}

}  // namespace keplo
