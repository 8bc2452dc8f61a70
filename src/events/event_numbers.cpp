#include "events/event_numbers.h"

#include <charconv>

#include "events/sqlite_handle.h"
#include "events/sqlite_statement.h"

namespace keplo {

namespace {

/// The number that an EventID is; 0 for any other text.
std::int64_t NumberIn(const std::string& eventID) {
  std::int64_t number = 0;
  const char* const end = eventID.data() + eventID.size();
  const auto [stop, error] = std::from_chars(eventID.data(), end, number);
  const bool counts = error == std::errc() && stop == end && number < kEndOfEventNumbers;
  return counts ? number : 0;
}

}  // namespace

void NoteUsedUp(sqlite3* database, const std::string& eventID) {
  const std::int64_t number = NumberIn(eventID);
  if (number <= HighestUsedUp(database)) return;
  // A table of its own: other programs know the event table as it is.
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
