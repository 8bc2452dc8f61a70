#pragma once

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <string_view>

#include "events/connection.h"
#include "events/recordset.h"
#include "host/host_records.h"
#include "ui/clock.h"

namespace keplo {

/// The only access to the event database: owns the connection and opens it on demand. Operations do not
/// throw; they return 1 for success and 0 for a failure, which ErrorDetails then describes.
class Data {
 public:
  /// The connection stays closed until the first use.
  /// @param appPath the folder of the event database
  /// @param busyTimeout how long to wait for another program's lock
  Data(const std::filesystem::path& appPath, const ui::Clock& clock,
       std::chrono::milliseconds busyTimeout = keplo::Connection::kBusyTimeout);
  Data(const Data&) = delete;
  Data& operator=(const Data&) = delete;

  keplo::Connection& Connection() { return connection_; }
  const HostErrorRecord& ErrorDetails() const { return errorDetails_; }

  /// @return 1 if the connection is open or could be opened
  std::int32_t CheckConnection();
  /// @param sql statements that return no rows
  std::int32_t ExecuteSQLCommand(std::string_view sql);
  /// @param sql one statement
  /// @param rs out: a snapshot of the statement's rows; closed after a failure
  std::int32_t ExecuteSQL(std::string_view sql, Recordset& rs);
  /// Opens the database in the application path.
  std::int32_t Initialise();
  /// Whether another program has written the database, or replaced its file, since it was opened or since the
  /// last call. Never waits for a lock: a change of a locked database is found by a later call. A file that
  /// was replaced is reopened, if necessary by a later call.
  bool ChangedElsewhere();
  /// Whether ChangedElsewhere has to be called again although no file changes, because it met a lock or the
  /// data in memory is stale.
  bool NeedsAnotherCheck() const { return metLock_ || stale_; }
  /// Makes the next ChangedElsewhere that can read the database return true, because the data in memory no
  /// longer matches it.
  void MarkStale() { stale_ = true; }
  /// @return 1, even if the connection was already closed
  std::int32_t CloseConnection();

 private:
  /// Stores the exception being handled as ErrorDetails.
  void StoreErrorDetails(std::string_view procedure, std::string_view detail) noexcept;

  bool metLock_ = false;
  bool stale_ = false;  // whether the data read may differ from the database
  std::filesystem::path databasePath_;
  const ui::Clock& clock_;
  keplo::Connection connection_;
  HostErrorRecord errorDetails_;
};

}  // namespace keplo
