#pragma once

#include <cstdint>
#include <string>

struct sqlite3;

namespace keplo {

/// Numbers from here on are nobody's count: somebody made them up, and to go on from there could run out of
/// numbers.
inline constexpr std::int64_t kEndOfEventNumbers = 1'000'000'000'000'000;

/// Notes, inside the transaction that deletes an event, that its EventID is used up. A host may still have
/// something under an EventID whose event is gone, so none comes twice.
/// @param eventID anything but a number is left out
/// @throws Failure
void NoteUsedUp(sqlite3* database, const std::string& eventID);

/// The highest EventID of a deleted event; 0 if none was deleted.
/// @throws Failure
std::int64_t HighestUsedUp(sqlite3* database);

}  // namespace keplo
