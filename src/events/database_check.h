#pragma once

#include <string>

struct sqlite3;

namespace keplo {

/// Looks whether a database that was just opened is a whole event database that this program can read.
/// @throws Failure for a file of another kind, of a newer program, in the old desktop-database format, or
///         damaged
void CheckIsEventDatabase(sqlite3* database, const std::string& path);

}  // namespace keplo
