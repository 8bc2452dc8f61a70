#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <variant>

struct sqlite3;
struct sqlite3_stmt;

namespace keplo {

/// Raw bytes, as only a foreign tool stores them.
struct SqlBytes {
  std::string Bytes;
};

/// A value of a column; texts are UTF-8 whatever the file is written in; monostate is null.
using SqlValue = std::variant<std::monostate, std::int64_t, double, std::string, SqlBytes>;

/// One prepared statement. Values reach it as parameters, never as part of its text.
class SqliteStatement {
 public:
  /// @param sql exactly one statement
  /// @throws Failure for a text that SQLite refuses, that is empty, or that holds more than one statement
  SqliteStatement(sqlite3* database, std::string_view sql);

  /// Sets the parameter ?index.
  void Bind(int index, const SqlValue& value);

  /// @return true if the statement stands on a row, false after the last one
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

/// The first value that a statement gives, or 0 or an empty text where there is none of that type.
std::int64_t FirstNumber(sqlite3* database, std::string_view sql);
std::string FirstText(sqlite3* database, std::string_view sql);

}  // namespace keplo
