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

// The headers of the desktop database in which earlier releases stored the event map.
constexpr std::array kOldFormatHeaders = {"\0\1\0\0Standard Jet DB"sv, "\0\1\0\0Standard ACE DB"sv};

std::string OldFormatAdvice(std::string_view path) {
  return "Move it away, bring an empty one with " + InstallCommand(path) + " and add the events again.";
}

bool IsOldFormat(const std::string& path) {
  std::array<char, kOldFormatHeaders[0].size()> head{};
  std::ifstream(path, std::ios::binary).read(head.data(), head.size());
  const std::string_view found(head.data(), head.size());
  return found == kOldFormatHeaders[0] || found == kOldFormatHeaders[1];
}

void CheckKind(sqlite3* database, const std::string& path) {
  if (FirstNumber(database, "pragma application_id") == kApplicationID) return;
  throw Failure(SqliteFailureNumber(SQLITE_NOTADB),
                DatabaseText(path, "is not an event database", ReplaceAdvice(path)));
}

void CheckVersion(sqlite3* database, const std::string& path) {
  const std::int64_t version = FirstNumber(database, "pragma user_version");
  if (version == kFormatVersion) return;
  const std::string reason = "has the format " + std::to_string(version) +
                             ", and this program reads format " + std::to_string(kFormatVersion);
  const std::string advice = version > kFormatVersion
                                 ? "A newer release wrote it: install that release again."
                                 : ReplaceAdvice(path);
  throw Failure(SqliteFailureNumber(SQLITE_MISMATCH), DatabaseText(path, reason, advice));
}

void CheckHasNoView(sqlite3* database, const std::string& path) {
  SqliteStatement views(database,
                        "select name from sqlite_schema where type = 'view' and"
                        " name = 'colclsKeploEvents' collate nocase");
  if (!views.Step()) return;
  throw Failure(SqliteFailureNumber(SQLITE_NOTADB),
                DatabaseText(path, "holds a view in place of the event table, which takes no changes",
                             ReplaceAdvice(path)));
}

/// SQLite would read the missing part of a truncated file as zeros, and so lose its events.
void CheckSize(sqlite3* database, const std::string& path) {
  const std::int64_t expected = FirstNumber(
      database, "select page_count * page_size from pragma_page_count, pragma_page_size");  // bytes
  sqlite3_file* file = nullptr;
  sqlite3_int64 size = 0;  // bytes
  sqlite3_file_control(database, "main", SQLITE_FCNTL_FILE_POINTER, &file);
  const int code = file->pMethods->xFileSize(file, &size);
  if (code == SQLITE_OK && size >= expected) return;
  throw Failure(SqliteFailureNumber(code == SQLITE_OK ? SQLITE_CORRUPT : code),
                DatabaseText(path,
                             "is damaged (it holds " + std::to_string(size) + " of its " +
                                 std::to_string(expected) + " bytes)",
                             ReplaceAdvice(path)));
}

void CheckIntegrity(sqlite3* database, const std::string& path) {
  const std::string found = FirstText(database, "pragma quick_check(1)");
  if (found == "ok") return;
  throw Failure(SqliteFailureNumber(SQLITE_CORRUPT),
                DatabaseText(path, "is damaged (" + found + ")", ReplaceAdvice(path)));
}

}  // namespace

void CheckIsEventDatabase(sqlite3* database, const std::string& path) {
  try {
    CheckKind(database, path);
  } catch (const Failure& failure) {
    // The file is only read directly once SQLite has refused it: closing a second descriptor would release
    // the locks that this process holds on a good one.
    if (failure.Number() == SqliteFailureNumber(SQLITE_NOTADB) && IsOldFormat(path)) {
      throw Failure(
          SqliteFailureNumber(SQLITE_NOTADB),
          DatabaseText(path, "is in the old desktop-database format, which this program cannot read",
                       OldFormatAdvice(path)));
    }
    throw;
  }
  CheckVersion(database, path);
  CheckHasNoView(database, path);
}

void CheckIsWhole(sqlite3* database, const std::string& path) {
  CheckSize(database, path);
  CheckIntegrity(database, path);
}

}  // namespace keplo
