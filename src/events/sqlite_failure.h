#pragma once

#include <string>
#include <string_view>

#include "failure.h"

struct sqlite3;

namespace keplo {

/// What to do about an unusable database.
std::string ReplaceAdvice(std::string_view path);
/// The command that creates an empty one.
std::string InstallCommand(std::string_view path);

/// "The event database PATH REASON. ADVICE"
std::string DatabaseText(std::string_view path, std::string_view reason, std::string_view advice);

/// The file that SQLite has open; empty if there is none.
std::string_view OpenFileName(sqlite3* database);

/// The last failure of a database: SQLite's extended result code and a message for the user that names the
/// file, what is wrong and what to do.
/// @param path of the file; empty for the one that SQLite has open
Failure FailureOf(sqlite3* database, std::string_view path = {});

}  // namespace keplo
