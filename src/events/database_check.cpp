#include "events/database_check.h"

#include <sqlite3.h>

#include <array>
#include <fstream>
#include <string_view>

#include "events/event_schema.h"
#include "events/failure_numbers.h"
#include "events/sqlite_failure.h"
#include "events/sqlite_statement.h"

namespace keplo {

namespace {

using namespace std::string_view_literals;

// How a file of the desktop database begins that earlier releases kept the event map in.
constexpr std::array kOldFormatHeaders = {"\0\1\0\0Standard Jet DB"sv, "\0\1\0\0Standard ACE DB"sv};

constexpr std::string_view kOldFormatAdvice =
    "Move it away, run 'keplo install' for an empty event map and add the events again.";

bool IsOldFormat(const std::string& path) {
  std::array<char, kOldFormatHeaders[0].size()> head{};
  std::ifstream(path, std::ios::binary).read(head.data(), head.size());
  const std::string_view found(head.data(), head.size());
  return found == kOldFormatHeaders[0] || found == kOldFormatHeaders[1];
}

SqlValue FirstValue(sqlite3* database, std::string_view pragma) {
  SqliteStatement statement(database, pragma);
  return statement.Step() ? statement.Value(0) : SqlValue();
}

void CheckKind(sqlite3* database, const std::string& path) {
  if (FirstValue(database, "pragma application_id") == SqlValue(std::int64_t{kApplicationID})) return;
  throw Failure(SqliteFailureNumber(SQLITE_NOTADB),
                DatabaseText(path, "is not an event database", kReplaceAdvice));
}

void CheckVersion(sqlite3* database, const std::string& path) {
  const auto version = std::get<std::int64_t>(FirstValue(database, "pragma user_version"));
  if (version == kFormatVersion) return;
  const std::string reason = "has the format " + std::to_string(version) +
                             ", and this program reads format " + std::to_string(kFormatVersion);
  const std::string_view advice =
      version > kFormatVersion ? "A newer release wrote it: install that release again." : kReplaceAdvice;
  throw Failure(SqliteFailureNumber(SQLITE_MISMATCH), DatabaseText(path, reason, advice));
}

void CheckIsWhole(sqlite3* database, const std::string& path) {
  const SqlValue result = FirstValue(database, "pragma quick_check(1)");
  const auto* text = std::get_if<std::string>(&result);
  if (text != nullptr && *text == "ok") return;
  const std::string detail = text == nullptr ? "no answer" : *text;
  throw Failure(SqliteFailureNumber(SQLITE_CORRUPT),
                DatabaseText(path, "is damaged (" + detail + ")", kReplaceAdvice));
}

}  // namespace

void CheckIsEventDatabase(sqlite3* database, const std::string& path) {
  try {
    CheckKind(database, path);
  } catch (const Failure& failure) {
    // The file is read beside SQLite only once SQLite has refused it: closing a second descriptor would drop
    // the locks that this process holds on a good one.
    if (failure.Number() == SqliteFailureNumber(SQLITE_NOTADB) && IsOldFormat(path)) {
      throw Failure(
          SqliteFailureNumber(SQLITE_NOTADB),
          DatabaseText(path, "is in the old desktop-database format, which this program cannot read",
                       kOldFormatAdvice));
    }
    throw;
  }
  CheckVersion(database, path);
  CheckIsWhole(database, path);
}

}  // namespace keplo
