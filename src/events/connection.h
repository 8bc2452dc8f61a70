#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>

#include "events/sqlite_handle.h"
#include "failure.h"

namespace keplo {

/// The connection to the event database. Closed with its owner.
class Connection {
 public:
  /// How long a call waits for another program that holds a lock. A change takes some tens of milliseconds
  /// on a slow card, and a user is not kept waiting longer than this.
  static constexpr std::chrono::milliseconds kBusyTimeout{2000};

  explicit Connection(std::chrono::milliseconds busyTimeout = kBusyTimeout) : busyTimeout_(busyTimeout) {}

  /// @return 0 for closed, 1 for open
  std::int32_t State() const { return database_ == nullptr ? 0 : 1; }

  /// The absolute path of the last Open, whether it succeeded or not; empty before the first.
  const std::string& ConnectionString() const { return connectionString_; }

  /// Opens an event database that exists; never creates one.
  /// @param connectionString path of the file; empty for the one of the last Open
  /// @throws Failure if the file cannot be opened or is not an event database, or if the connection is open
  void Open(const std::string& connectionString = {});
  /// The same, but gives up at once where another program holds a lock.
  void OpenAtOnce(const std::string& connectionString);

  /// Runs statements without rows. A transaction that a failing text has begun is undone.
  /// @throws Failure
  void Execute(const std::string& sql);

  /// Whether another program has changed the database since it was opened or since this was asked last. Does
  /// not wait for a lock, and says nothing while there is one.
  /// @throws Failure on a closed connection or one whose file cannot be read
  std::optional<bool> ChangedElsewhere();
  /// Lets the next ChangedElsewhere say yes, once there is no lock.
  void DoubtWhatWasRead() { dataVersion_ = kUnknownVersion; }
  /// Whether another file stands at the path than the one that is open.
  bool FileWasReplaced() const;

  /// Does nothing on a closed connection.
  void Close() { database_.reset(); }

  /// The open database.
  /// @throws Failure on a closed connection: the one of the last Open, if that is why
  sqlite3* Database() const;

 private:
  /// Which file is open.
  struct FileNumber {
    std::uint64_t Device = 0, Inode = 0;
    bool operator==(const FileNumber&) const = default;
  };

  std::optional<FileNumber> FileAtPath() const;
  void Open(const std::string& connectionString, std::chrono::milliseconds patience);
  SqliteHandle OpenDatabase(std::chrono::milliseconds patience) const;
  void LeaveWriteAheadMode(sqlite3* database, std::chrono::milliseconds patience) const;

  std::chrono::milliseconds busyTimeout_;
  std::string connectionString_;
  SqliteHandle database_;
  std::optional<Failure> openFailure_;
  std::optional<FileNumber> openedFile_;
  static constexpr std::int64_t kUnknownVersion = -1;

  std::int64_t dataVersion_ = 0;  // SQLite's count of what others have changed
};

}  // namespace keplo
