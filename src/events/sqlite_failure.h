#pragma once

#include <string>
#include <string_view>

#include "failure.h"

struct sqlite3;

namespace keplo {

/// What to do about a database that cannot be used.
std::string ReplaceAdvice(std::string_view path);
/// The command that brings an empty one to where there is none.
std::string BringMapCommand(std::string_view path);

/// "The event database PATH REASON. ADVICE"
std::string DatabaseText(std::string_view path, std::string_view reason, std::string_view advice);

/// The file that SQLite has open; empty for none.
std::string_view OpenFileName(sqlite3* database);

/// The last failure of a database: the number of SQLite's extended result code and a text that tells the user
/// which file it is, what is wrong and what to do.
/// @param path the file as the caller knows it; empty for the one that SQLite has open
Failure FailureOf(sqlite3* database, std::string_view path = {});

}  // namespace keplo
