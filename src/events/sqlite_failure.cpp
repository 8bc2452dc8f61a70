#include "events/sqlite_failure.h"

#include <sqlite3.h>

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <system_error>

#include "disk/file_system.h"
#include "disk/new_file_check.h"
#include "events/failure_numbers.h"
#include "typed_command.h"

namespace keplo {

namespace {

struct Explanation {
  int Code;
  std::string_view Reason;
  std::string_view Advice;  // empty if the file has to be replaced
};

// Extended codes come before their primary code.
constexpr Explanation kExplanations[] = {
    {SQLITE_CONSTRAINT_UNIQUE, "already holds an event with this EventID",
     "Every event needs an EventID of its own. Start the program again if another one added it."},
    {SQLITE_CONSTRAINT, "does not take these values", "Give every column of the event a value."},
    {SQLITE_TOOBIG, "takes no texts this long", "Shorten the texts of the event."},
    {SQLITE_NOMEM, "cannot be used, because the memory is full", "Close other programs, then try again."},
    {SQLITE_READONLY_DBMOVED, "was moved or deleted while it was open", "Start the program again."},
    {SQLITE_READONLY, "cannot be changed",
     "Give this user the right to write to the file and to its folder."},
    {SQLITE_BUSY, "is locked by another program",
     "Close the other program or let it finish, then try again."},
    {SQLITE_CANTOPEN, "cannot be opened",
     "Check that it is a file and that this user may read and write it and its folder."},
    {SQLITE_FULL, "cannot be changed, because the disk is full", "Free some space, then try again."},
    {SQLITE_IOERR, "cannot be read or written", "Check the disk that it lies on."},
    {SQLITE_CORRUPT, "is damaged", ""},
    {SQLITE_NOTADB, "is not an event database", ""},
};

constexpr Explanation kRefused = {SQLITE_ERROR, "refused the statement",
                                  "Check the statement and that the table is the one of an event map."};

const Explanation& Explain(int code) {
  const int primary = code & 0xFF;
  const auto* found =
      std::find_if(std::begin(kExplanations), std::end(kExplanations),
                   [&](const auto& entry) { return entry.Code == code || entry.Code == primary; });
  return found == std::end(kExplanations) ? kRefused : *found;
}

bool IsFileFailure(int code) {
  const int primary = code & 0xFF;
  return primary == SQLITE_CANTOPEN || primary == SQLITE_IOERR;
}

/// If SQLite cannot create a journal, it tries to open it for reading and reports the errno of that attempt.
bool CouldNotMakeJournal(int code, int systemError, std::string_view path) {
  std::error_code unknown;
  return IsFileFailure(code) && systemError == ENOENT && std::filesystem::exists(path, unknown);
}

Failure JournalFailure(int code, std::string_view path) {
  const int error = NewFileError(FolderOf(path));
  const std::string reason = error == 0 ? "" : " (" + std::generic_category().message(error) + ")";
  return {SqliteFailureNumber(code),
          DatabaseText(path, "cannot be changed, because no journal can be made beside it" + reason,
                       "Check the folder and the room on its disk.")};
}

}  // namespace

std::string InstallCommand(std::string_view path) { return TypedCommand("install", FolderOf(path).string()); }

std::string ReplaceAdvice(std::string_view path) {
  return "Put a backup in its place, or move it away and bring an empty one with: " + InstallCommand(path);
}

std::string_view OpenFileName(sqlite3* database) {
  const char* name = sqlite3_db_filename(database, "main");
  return name == nullptr ? "" : name;
}

std::string DatabaseText(std::string_view path, std::string_view reason, std::string_view advice) {
  std::string text = "The event database ";
  text.append(path).append(" ").append(reason).append(". ").append(advice);
  return text;
}

Failure FailureOf(sqlite3* database, std::string_view path) {
  const int code = sqlite3_extended_errcode(database);
  const int systemError = sqlite3_system_errno(database);
  if (path.empty()) path = OpenFileName(database);
  if (CouldNotMakeJournal(code, systemError, path)) return JournalFailure(code, path);
  if (IsFileFailure(code) && systemError == ENOENT) {
    return {SqliteFailureNumber(code),
            DatabaseText(path, "does not exist",
                         "Put a backup there, or bring an empty one with: " + InstallCommand(path))};
  }

  std::string detail = sqlite3_errmsg(database);
  if (IsFileFailure(code) && systemError != 0) detail += ": " + std::generic_category().message(systemError);
  const Explanation& explanation = Explain(code);
  const std::string advice =
      explanation.Advice.empty() ? ReplaceAdvice(path) : std::string(explanation.Advice);
  return {SqliteFailureNumber(code),
          DatabaseText(path, std::string(explanation.Reason) + " (" + detail + ")", advice)};
}

}  // namespace keplo
