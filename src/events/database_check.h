#pragma once

#include <string>

struct sqlite3;

namespace keplo {

/// Looks whether a database that was just opened is an event database that this program can read.
/// @throws Failure for a file of another kind, of a newer program, or in the old desktop-database format
void CheckIsEventDatabase(sqlite3* database, const std::string& path);

/// Looks whether an event database is whole. Its newest pages must not lie in a write-ahead file beside it.
/// @throws Failure for a file that is damaged or was cut
void CheckIsWhole(sqlite3* database, const std::string& path);

}  // namespace keplo
