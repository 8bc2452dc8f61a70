#include "events/data.h"

#include <array>
#include <ctime>
#include <optional>
#include <string>
#include <system_error>
#include <utility>

#include "events/error_record.h"
#include "events/event_schema.h"

namespace keplo {

namespace {

std::string PlatformDate(std::chrono::system_clock::time_point when) {
  const std::time_t seconds = std::chrono::system_clock::to_time_t(when);
  std::tm local{};
  localtime_r(&seconds, &local);
  std::array<char, 128> text{};
  std::strftime(text.data(), text.size(), "%c", &local);
  return text.data();
}

/// So that a later change of the working directory does not matter.
std::filesystem::path Absolute(const std::filesystem::path& path) {
  std::error_code error;
  const std::filesystem::path absolute = std::filesystem::absolute(path, error);
  return error ? path : absolute;
}

}  // namespace

Data::Data(const std::filesystem::path& appPath, const ui::Clock& clock,
           std::chrono::milliseconds busyTimeout)
    : databasePath_(Absolute(appPath / kDatabaseFile)), clock_(clock), connection_(busyTimeout) {}

std::int32_t Data::CheckConnection() try {
  if (connection_.State() != 0) return 1;
  if (connection_.ConnectionString().empty()) return Initialise();
  connection_.Open();
  return 1;
} catch (...) {
  StoreErrorDetails("CheckConnection", "");
  return 0;
}

std::int32_t Data::ExecuteSQLCommand(std::string_view sql) try {
  CheckConnection();
  connection_.Execute(std::string(sql));
  return 1;
} catch (...) {
  StoreErrorDetails("ExecuteSQLCommand", sql);
  return 0;
}

std::int32_t Data::ExecuteSQL(std::string_view sql, Recordset& rs) try {
  CheckConnection();
  rs = Recordset();
  rs.Open(sql, connection_);
  return 1;
} catch (...) {
  StoreErrorDetails("ExecuteSQL", sql);
  return 0;
}

std::int32_t Data::Initialise() try {
  connection_.Open(databasePath_.string());
  return 1;
} catch (...) {
  StoreErrorDetails("Initialise", connection_.ConnectionString());
  return 0;
}

bool Data::ChangedElsewhere() try {
  metLock_ = false;
  if (connection_.FileWasReplaced()) {
    connection_.Close();
    stale_ = true;
  }
  if (connection_.State() == 0) {
    // A file that is still being moved into place, or is locked, is opened by a later call.
    if (!stale_) return false;
    connection_.OpenWithoutWaiting(databasePath_.string());
  }
  if (stale_) connection_.MarkStale();
  const std::optional<bool> changed = connection_.ChangedElsewhere();
  metLock_ = !changed;
  if (changed == true) stale_ = false;
  return changed == true;
} catch (...) {
  return false;
}

std::int32_t Data::CloseConnection() try {
  if (connection_.State() == 1) connection_.Close();
  return 1;
} catch (...) {
  StoreErrorDetails("CloseConnection", "");
  return 0;
}

void Data::StoreErrorDetails(std::string_view procedure, std::string_view detail) noexcept {
  ReportCurrentFailure([&](const std::exception& failure) {
    HostErrorRecord record =
        ErrorRecordOf(failure, "Data", std::string(procedure), PlatformDate(clock_.Now()));
    record.ErrorDetail = detail;
    errorDetails_ = std::move(record);
  });
}

}  // namespace keplo
