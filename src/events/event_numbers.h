#pragma once

#include <cstdint>
#include <string>

struct sqlite3;

namespace keplo {

/// Records, inside the transaction that deletes an event, that its EventID is used up. EventIDs are never
/// reused, since a host may still have something under that of a deleted event.
/// @param eventID ignored if it is not a number
/// @throws Failure
void NoteUsedUp(sqlite3* database, const std::string& eventID);

/// The highest EventID of a deleted event; 0 if none was deleted.
/// @throws Failure
std::int64_t HighestUsedUp(sqlite3* database);

}  // namespace keplo
