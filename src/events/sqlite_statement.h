#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <variant>

struct sqlite3;
struct sqlite3_stmt;

namespace keplo {

/// A value of a column; monostate is null.
using SqlValue = std::variant<std::monostate, std::int64_t, double, std::string>;

/// One prepared statement. Values reach it as parameters, never as part of its text.
class SqliteStatement {
 public:
  /// @param sql exactly one statement
  /// @throws Failure for a text that SQLite refuses, that is empty, or that holds more than one statement
  SqliteStatement(sqlite3* database, std::string_view sql);

  /// Sets the parameter ?index.
  void Bind(int index, const SqlValue& value);

  /// @return true if the statement stands on a row, false behind the last one
  /// @throws Failure as FailureOf tells it
  bool Step();

  int ColumnCount() const;
  std::string ColumnName(int column) const;
  SqlValue Value(int column) const;

 private:
  struct Finalizer {
    void operator()(sqlite3_stmt* statement) const;
  };

  sqlite3* database_;
  std::unique_ptr<sqlite3_stmt, Finalizer> statement_;
};

}  // namespace keplo
