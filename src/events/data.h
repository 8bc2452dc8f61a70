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

/// The one way to the event database: owns the connection and opens it on demand. Its operations return 1
/// for success and 0 for a failure, which ErrorDetails tells then; nothing is thrown.
class Data {
 public:
  /// The connection stays closed until the first use.
  /// @param appPath the folder of the event database
  /// @param busyTimeout how long to wait for another program that holds a lock
  Data(const std::filesystem::path& appPath, const ui::Clock& clock,
       std::chrono::milliseconds busyTimeout = keplo::Connection::kBusyTimeout);
  Data(const Data&) = delete;
  Data& operator=(const Data&) = delete;

  keplo::Connection& Connection() { return connection_; }
  const HostErrorRecord& ErrorDetails() const { return errorDetails_; }

  /// @return 1 when the connection is open or could be opened
  std::int32_t CheckConnection();
  /// @param sql statements without rows
  std::int32_t ExecuteSQLCommand(std::string_view sql);
  /// @param sql one statement
  /// @param rs out: a snapshot of the statement's rows; closed after a failure
  std::int32_t ExecuteSQL(std::string_view sql, Recordset& rs);
  /// Opens the database of the application path.
  std::int32_t Initialise();
  /// Whether another program has written the database, or put another file in its place, since it was opened
  /// or since this was asked last. Never waits for a lock: a database that is locked is told at a later look.
  /// A file that was replaced is opened again, at a later look if it cannot be yet.
  bool ChangedElsewhere();
  /// Whether ChangedElsewhere met a lock, or what is in memory is in doubt: nobody tells when that is over.
  bool WantsAnotherLook() const { return metLock_ || inDoubt_; }
  /// Lets the next ChangedElsewhere that can read the database say yes: what is in memory is no longer what
  /// the database has.
  void DoubtWhatWasRead() { inDoubt_ = true; }
  /// @return 1, for a connection that is closed already as well
  std::int32_t CloseConnection();

 private:
  /// Keeps the record of the exception that is being handled.
  void KeepRecord(std::string_view procedure, std::string_view detail) noexcept;

  bool metLock_ = false;
  bool inDoubt_ = false;  // whether what was read is what the database has
  std::filesystem::path databasePath_;
  const ui::Clock& clock_;
  keplo::Connection connection_;
  HostErrorRecord errorDetails_;
};

}  // namespace keplo
