#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>

#include "events/sqlite_handle.h"
#include "failure.h"

namespace keplo {

/// The connection to the event database; closed on destruction.
class Connection {
 public:
  /// How long a call waits for another program's lock. A change takes tens of milliseconds on a slow card; a
  /// user should not have to wait longer than this.
  static constexpr std::chrono::milliseconds kBusyTimeout{2000};

  explicit Connection(std::chrono::milliseconds busyTimeout = kBusyTimeout) : busyTimeout_(busyTimeout) {}

  /// @return 0 for closed, 1 for open
  std::int32_t State() const { return database_ == nullptr ? 0 : 1; }

  /// The absolute path of the last Open, successful or not; empty before the first.
  const std::string& ConnectionString() const { return connectionString_; }

  /// Opens an existing event database; never creates one.
  /// @param connectionString path of the file; empty for that of the last Open
  /// @throws Failure if the file cannot be opened or is not an event database, or if the connection is open
  void Open(const std::string& connectionString = {});
  /// Like Open, but fails at once if another program holds a lock.
  void OpenWithoutWaiting(const std::string& connectionString);

  /// Runs statements that return no rows. If they fail, a transaction that they have begun is rolled back.
  /// @throws Failure
  void Execute(const std::string& sql);

  /// Whether another program has changed the database since it was opened or since the last call. Does not
  /// wait for a lock; none while there is one.
  /// @throws Failure if the connection is closed or the file cannot be read
  std::optional<bool> ChangedElsewhere();
  /// Makes the next ChangedElsewhere that meets no lock return true.
  void MarkStale() { dataVersion_ = kUnknownVersion; }
  /// Whether the open file is no longer the one at the path.
  bool FileWasReplaced() const;

  /// Does nothing if the connection is closed.
  void Close() { database_.reset(); }

  /// The open database.
  /// @throws Failure if the connection is closed; that of the last Open if it failed
  sqlite3* Database() const;

 private:
  /// Identifies a file.
  struct FileNumber {
    std::uint64_t Device = 0, Inode = 0;
    bool operator==(const FileNumber&) const = default;
  };

  std::optional<FileNumber> FileAtPath() const;
  void Open(const std::string& connectionString, std::chrono::milliseconds timeout);
  SqliteHandle OpenDatabase(std::chrono::milliseconds timeout) const;
  void LeaveWriteAheadMode(sqlite3* database, std::chrono::milliseconds timeout) const;

  std::chrono::milliseconds busyTimeout_;
  std::string connectionString_;
  SqliteHandle database_;
  std::optional<Failure> openFailure_;
  std::optional<FileNumber> openedFile_;
  static constexpr std::int64_t kUnknownVersion = -1;

  std::int64_t dataVersion_ = 0;  // SQLite's counter of changes by others
};

}  // namespace keplo
