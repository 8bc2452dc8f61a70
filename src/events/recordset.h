#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "events/connection.h"
#include "events/event_query.h"
#include "events/sqlite_statement.h"
#include "events/transaction.h"

namespace keplo {

/// Rows of the event database, read forward once. A snapshot is a copy and no longer needs the connection; a
/// live set changes the table one row at a time, each change completely or not at all. It reads its rows on
/// first use, so that adding to a large table reads nothing.
class Recordset {
 public:
  /// Takes a snapshot of the rows of a statement; the first one is current.
  /// @throws Failure if the connection is closed or the database refuses the statement
  void Open(std::string_view sql, const Connection& connection);

  /// Opens a live set, whose first row is current. The connection must outlive it.
  /// @throws Failure if the connection is closed or the table missing; a table that cannot be read makes the
  /// first
  ///         operation on a row throw
  void Open(const EventQuery& query, const Connection& connection);

  /// @return whether there is no current row: after the last one, and in an empty set
  bool Eof() const;
  /// Moves to the next row. Changes of the current one that Update has not written are dropped.
  void MoveNext();
  /// Forgets the rows. Does nothing on a closed set.
  void Close() { *this = Recordset(); }

  /// A column of the current row. Column names ignore case, as in SQL.
  /// @throws Failure after the last row, or if the set has no such column
  const SqlValue& FieldValue(std::string_view column) const;
  /// FieldValue as a text, a boolean or a number.
  /// @throws Failure also for null, another type, or a number that does not fit 16 bits
  std::string FieldText(std::string_view column) const;
  bool FieldBoolean(std::string_view column) const;
  std::int16_t FieldInteger(std::string_view column) const;

  /// Sets a column of the current row, to be written by Update.
  /// @throws Failure on a snapshot, after the last row, or if the set has no such column
  void SetFieldValue(std::string_view column, SqlValue value);
  /// Appends a new row of nulls to the set, which becomes current; Update writes it.
  void AddNew();
  /// Writes the current row to the table.
  /// @throws Failure if another program changed or deleted the row since it was read, the table cannot be
  /// written,
  ///         or it already has the EventID
  /// @throws NotConfirmed if it was written, but only the final flush failed
  void Update();
  /// Deletes the current row from the table; the next one becomes current.
  /// @throws Failure if another program deleted the row since it was read, or the table cannot be written
  /// @throws NotConfirmed if it was deleted, but only the final flush failed
  void Delete();

 private:
  struct Row {
    std::optional<std::int64_t> RowID;  // none in a snapshot and in a new row
    std::vector<SqlValue> Values;
  };

  void Start(SqliteStatement statement, const Connection* live);
  void ReadRows() const;
  Row ReadRow() const;
  void RequireOpen() const;
  const Row& CurrentRow() const;
  sqlite3* LiveDatabase() const;
  std::size_t ColumnIndex(std::string_view column) const;
  std::int64_t FieldNumber(std::string_view column, const char* expected) const;
  Failure FieldFailure(int number, std::string_view column, const char* found, const char* expected) const;
  void BindCurrentRow(SqliteStatement& statement) const;

  bool open_ = false;
  const Connection* connection_ = nullptr;  // of a live set
  std::vector<std::string> columns_;
  mutable std::optional<SqliteStatement> unread_;  // until the rows are read
  mutable std::vector<Row> rows_;
  std::size_t position_ = 0;
  std::optional<std::vector<SqlValue>> edited_;  // the values of the current row for Update to write
};

}  // namespace keplo
