#pragma once

#include <optional>

#include "failure.h"

struct sqlite3;

namespace keplo {

/// Thrown when a change was made and is visible to everybody, but may not survive a power cut because the
/// final flush failed.
class NotConfirmed : public Failure {
 public:
  using Failure::Failure;
};

/// A database transaction, rolled back unless it was committed.
class Transaction {
 public:
  /// Takes the write lock at once, so that it fails before anything is changed if another program holds a
  /// lock.
  /// @throws Failure if the database is locked or cannot be written
  explicit Transaction(sqlite3* database);
  ~Transaction();
  Transaction(const Transaction&) = delete;
  Transaction& operator=(const Transaction&) = delete;

  /// @return what to report if only the final flush failed
  /// @throws Failure if the change could not be written; it is undone then
  [[nodiscard]] std::optional<NotConfirmed> Commit();

 private:
  sqlite3* database_;
};

}  // namespace keplo
