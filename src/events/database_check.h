#pragma once

#include <string>

struct sqlite3;

namespace keplo {

/// Checks that a database that was just opened is an event database that this program can read.
/// @throws Failure for a file of another kind, of a newer release, or in the old desktop-database format
void CheckIsEventDatabase(sqlite3* database, const std::string& path);

/// Checks that an event database, which must not be in write-ahead mode, is intact.
/// @throws Failure for a file that is damaged or truncated
void CheckIsWhole(sqlite3* database, const std::string& path);

}  // namespace keplo
