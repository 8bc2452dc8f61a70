#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <variant>

struct sqlite3;
struct sqlite3_stmt;

namespace keplo {

/// A blob, which only other tools store.
struct SqlBytes {
  std::string Bytes;
};

/// The value of a column. Texts are UTF-8, whatever the encoding of the file; monostate is null.
using SqlValue = std::variant<std::monostate, std::int64_t, double, std::string, SqlBytes>;

/// A prepared statement. Values are passed as parameters, never as part of its text.
class SqliteStatement {
 public:
  /// @param sql exactly one statement
  /// @throws Failure if SQLite refuses the text, or it is not exactly one statement
  SqliteStatement(sqlite3* database, std::string_view sql);

  /// Sets the parameter ?index.
  void Bind(int index, const SqlValue& value);

  /// @return whether there is a row; false after the last one
  /// @throws Failure as FailureOf describes it
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

/// The first value that a statement returns; 0 or an empty text if there is none of that type.
std::int64_t FirstNumber(sqlite3* database, std::string_view sql);
std::string FirstText(sqlite3* database, std::string_view sql);

}  // namespace keplo
