#pragma once

struct sqlite3;

namespace keplo {

/// A change of the database that happens whole or not at all: rolled back unless it was committed.
class Transaction {
 public:
  /// Takes the right to write at once, so that a lock of another program is met before anything is changed.
  /// @throws Failure if the database is locked or cannot be written
  explicit Transaction(sqlite3* database);
  ~Transaction();
  Transaction(const Transaction&) = delete;
  Transaction& operator=(const Transaction&) = delete;

  /// @throws Failure if the change could not reach the disk; it is undone then
  void Commit();

 private:
  sqlite3* database_;
};

}  // namespace keplo
