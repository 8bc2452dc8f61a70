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

/// Rows of the event database, walked forward once. A snapshot is private and needs no connection any more;
/// a live set changes the table, a row at a time and each change whole or not at all. It reads its rows when
/// one is first asked for, so that adding to a large table reads nothing.
class Recordset {
 public:
  /// Takes a snapshot of the rows of a statement and stands on the first one.
  /// @throws Failure for a closed connection or a statement that the database refuses
  void Open(std::string_view sql, const Connection& connection);

  /// Opens a live set and stands on its first row. The connection must outlive the set's use.
  /// @throws Failure for a closed connection or a missing table; one that cannot be read is told by the first
  ///         operation on a row
  void Open(const EventQuery& query, const Connection& connection);

  /// @return true after the last row and for an empty set
  bool Eof() const;
  /// Goes to the next row; changes of the current one that Update has not written are dropped.
  void MoveNext();
  /// Forgets the rows. Does nothing on a closed set.
  void Close() { *this = Recordset(); }

  /// A column of the current row. Column names are compared as the database does, without regard to case.
  /// @throws Failure after the last row, or if the set has no such column
  const SqlValue& FieldValue(std::string_view column) const;
  /// The same as a text, a boolean or a number.
  /// @throws Failure besides for a null, another type, or a number beyond 16 bits
  std::string FieldText(std::string_view column) const;
  bool FieldBoolean(std::string_view column) const;
  std::int16_t FieldInteger(std::string_view column) const;

  /// Sets a column of the current row, to be written by Update.
  /// @throws Failure on a snapshot, after the last row, or if the set has no such column
  void SetFieldValue(std::string_view column, SqlValue value);
  /// Starts a new row at the end of the set, all null, and stands on it.
  void AddNew();
  /// Writes the current row to the table.
  /// @throws Failure if another program changed or deleted the row since it was read, or if the table cannot
  ///         be written or already holds the EventID; NotConfirmed once it is written
  void Update();
  /// Deletes the current row from the table; the set stands on the next one.
  /// @throws Failure if another program deleted the row since it was read, or if the table cannot be written;
  ///         NotConfirmed once it is deleted
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
  void BindPresentRow(SqliteStatement& statement) const;

  bool open_ = false;
  const Connection* connection_ = nullptr;  // of a live set
  std::vector<std::string> columns_;
  mutable std::optional<SqliteStatement> unread_;  // gives the rows that nobody has asked for yet
  mutable std::vector<Row> rows_;
  std::size_t position_ = 0;
  std::optional<std::vector<SqlValue>> edited_;  // the current row's values for Update to write
};

}  // namespace keplo
