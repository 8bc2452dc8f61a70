#pragma once

#include <optional>

#include "failure.h"

struct sqlite3;

namespace keplo {

/// A change that was made and is seen by everybody, but of which the disk has not said that it outlives a
/// power cut.
class NotConfirmed : public Failure {
 public:
  using Failure::Failure;
};

/// A change of the database that happens whole or not at all: rolled back unless it was committed.
class Transaction {
 public:
  /// Takes the right to write at once, so that a lock of another program is met before anything is changed.
  /// @throws Failure if the database is locked or cannot be written
  explicit Transaction(sqlite3* database);
  ~Transaction();
  Transaction(const Transaction&) = delete;
  Transaction& operator=(const Transaction&) = delete;

  /// @return what is to be told if only the last flush failed
  /// @throws Failure if the change could not reach the disk; it is undone then
  [[nodiscard]] std::optional<NotConfirmed> Commit();

 private:
  sqlite3* database_;
};

}  // namespace keplo
