#include "events/recordset.h"

#include <sqlite3.h>

#include <algorithm>
#include <limits>
#include <utility>

#include "events/event_numbers.h"
#include "events/event_schema.h"
#include "events/failure_numbers.h"
#include "events/transaction.h"

namespace keplo {

namespace {

constexpr std::string_view kSelectLive = "select rowid, * from colclsKeploEvents";
constexpr std::string_view kSelectLiveWithID = "select rowid, * from colclsKeploEvents where EventID = ?1";
constexpr std::string_view kInsert =
    "insert into colclsKeploEvents (EventID, EventName, EventDescription, IRCommand, Enabled, Zone)"
    " values (?1, ?2, ?3, ?4, ?5, ?6)";
constexpr std::string_view kUpdate =
    "update colclsKeploEvents set EventID = ?1, EventName = ?2, EventDescription = ?3, IRCommand = ?4,"
    " Enabled = ?5, Zone = ?6 where rowid = ?7 and EventID is ?8 and EventName is ?9 and"
    " EventDescription is ?10 and IRCommand is ?11 and Enabled is ?12 and Zone is ?13";
constexpr std::string_view kDelete = "delete from colclsKeploEvents where rowid = ?1 and EventID is ?2";

// SQLite reuses the rowids of deleted rows, so statements identify a row by its EventID as well.
void RunOnOneRow(sqlite3* database, SqliteStatement& statement) {
  statement.Step();
  if (sqlite3_changes(database) == 1) return;
  throw Failure(kRowGone,
                "Another program changed or deleted the event meanwhile. Load the event map again.");
}

std::int64_t RowIDOf(const SqlValue& value) {
  if (const auto* number = std::get_if<std::int64_t>(&value)) return *number;
  throw Failure(kWrongType,
                "The event table has no row numbers, which a change needs. Put a backup of the event "
                "database in place of this one.");
}

}  // namespace

void Recordset::Open(std::string_view sql, const Connection& connection) {
  Close();
  Recordset snapshot;
  snapshot.Start(SqliteStatement(connection.Database(), sql), nullptr);
  snapshot.ReadRows();
  *this = std::move(snapshot);
}

void Recordset::Open(const EventQuery& query, const Connection& connection) {
  Close();
  SqliteStatement statement(connection.Database(), query.EventID ? kSelectLiveWithID : kSelectLive);
  if (query.EventID) statement.Bind(1, *query.EventID);
  Start(std::move(statement), &connection);
}

void Recordset::Start(SqliteStatement statement, const Connection* live) {
  const int columns = statement.ColumnCount();
  for (int column = live != nullptr ? 1 : 0; column < columns;
       ++column)  // the rowid of a live row comes first
    columns_.push_back(statement.ColumnName(column));
  unread_ = std::move(statement);
  connection_ = live;
  open_ = true;
}

void Recordset::ReadRows() const {
  if (!unread_) return;
  rows_.clear();  // in case an earlier call failed halfway
  while (unread_->Step()) rows_.push_back(ReadRow());
  unread_.reset();
}

Recordset::Row Recordset::ReadRow() const {
  Row row;
  int column = 0;
  if (connection_ != nullptr) row.RowID = RowIDOf(unread_->Value(column++));
  for (std::size_t field = 0; field < columns_.size(); ++field)
    row.Values.push_back(unread_->Value(column++));
  return row;
}

bool Recordset::Eof() const {
  RequireOpen();
  ReadRows();
  return position_ >= rows_.size();
}

void Recordset::MoveNext() {
  CurrentRow();
  edited_.reset();
  ++position_;
}

const SqlValue& Recordset::FieldValue(std::string_view column) const {
  const Row& row = CurrentRow();
  const std::size_t index = ColumnIndex(column);
  return edited_ ? (*edited_)[index] : row.Values[index];
}

std::string Recordset::FieldText(std::string_view column) const {
  static constexpr const char* kExpected = "a text";
  const SqlValue& value = FieldValue(column);
  if (const auto* text = std::get_if<std::string>(&value)) return *text;
  if (const auto* number = std::get_if<std::int64_t>(&value)) return std::to_string(*number);
  if (std::holds_alternative<std::monostate>(value))
    throw FieldFailure(kNullValue, column, "null", kExpected);
  throw FieldFailure(kWrongType, column, "a fraction or raw bytes", kExpected);
}

bool Recordset::FieldBoolean(std::string_view column) const {
  return FieldNumber(column, "a yes or no") != 0;
}

std::int16_t Recordset::FieldInteger(std::string_view column) const {
  static constexpr const char* kExpected = "a whole number from -32768 to 32767";
  const std::int64_t number = FieldNumber(column, kExpected);
  using Limits = std::numeric_limits<std::int16_t>;
  if (number < Limits::min() || number > Limits::max()) {
    throw FieldFailure(kNumberTooLarge, column, std::to_string(number).c_str(), kExpected);
  }
  return static_cast<std::int16_t>(number);
}

std::int64_t Recordset::FieldNumber(std::string_view column, const char* expected) const {
  const SqlValue& value = FieldValue(column);
  if (const auto* number = std::get_if<std::int64_t>(&value)) return *number;
  if (std::holds_alternative<std::monostate>(value)) throw FieldFailure(kNullValue, column, "null", expected);
  throw FieldFailure(kWrongType, column, "another type", expected);
}

Failure Recordset::FieldFailure(int number, std::string_view column, const char* found,
                                const char* expected) const {
  return {number, "Column " + std::string(column) + " of row " + std::to_string(position_ + 1) +
                      " of the event table holds " + found + ", expected " + expected +
                      ". Correct or delete the row with a database tool."};
}

void Recordset::SetFieldValue(std::string_view column, SqlValue value) {
  LiveDatabase();
  const Row& row = CurrentRow();
  const std::size_t index = ColumnIndex(column);
  if (!edited_) edited_ = row.Values;
  (*edited_)[index] = std::move(value);
}

void Recordset::AddNew() {
  LiveDatabase();
  unread_.reset();  // the set is now past its rows
  position_ = rows_.size();
  rows_.push_back({std::nullopt, std::vector<SqlValue>(columns_.size())});
  edited_.reset();
}

void Recordset::Update() {
  sqlite3* database = LiveDatabase();
  const std::optional<std::int64_t> rowID = CurrentRow().RowID;
  Transaction transaction(database);
  SqliteStatement statement(database, rowID ? kUpdate : kInsert);
  BindCurrentRow(statement);
  if (rowID) {
    int parameter = static_cast<int>(kEventColumns.size()) + 1;
    statement.Bind(parameter++, *rowID);
    for (const char* column : kEventColumns)
      statement.Bind(parameter++, rows_[position_].Values[ColumnIndex(column)]);
  }
  RunOnOneRow(database, statement);
  const std::optional<NotConfirmed> doubt = transaction.Commit();

  Row& written = rows_[position_];
  if (!rowID) written.RowID = sqlite3_last_insert_rowid(database);
  if (edited_) written.Values = std::move(*edited_);
  edited_.reset();
  if (doubt) throw NotConfirmed(*doubt);
}

void Recordset::BindCurrentRow(SqliteStatement& statement) const {
  int parameter = 1;
  for (const char* column : kEventColumns) statement.Bind(parameter++, FieldValue(column));
}

void Recordset::Delete() {
  sqlite3* database = LiveDatabase();
  const Row& row = CurrentRow();
  std::optional<NotConfirmed> doubt;
  if (row.RowID) {
    Transaction transaction(database);
    SqliteStatement statement(database, kDelete);
    statement.Bind(1, *row.RowID);
    statement.Bind(2, row.Values[ColumnIndex("EventID")]);
    RunOnOneRow(database, statement);
    if (const auto* eventID = std::get_if<std::string>(&row.Values[ColumnIndex("EventID")]))
      NoteUsedUp(database, *eventID);
    doubt = transaction.Commit();
  }
  edited_.reset();
  rows_.erase(rows_.begin() + static_cast<std::ptrdiff_t>(position_));
  if (doubt) throw NotConfirmed(*doubt);
}

void Recordset::RequireOpen() const {
  if (!open_) throw Failure(kObjectClosed, "The result set is closed. Open it first.");
}

const Recordset::Row& Recordset::CurrentRow() const {
  if (Eof())
    throw Failure(kNoCurrentRow, "The result set stands on no row: no event was found, or all were read.");
  return rows_[position_];
}

sqlite3* Recordset::LiveDatabase() const {
  RequireOpen();
  if (connection_ == nullptr) {
    throw Failure(kRowsReadOnly, "The result set is a snapshot and takes no changes. Open a live one.");
  }
  return connection_->Database();
}

std::size_t Recordset::ColumnIndex(std::string_view column) const {
  const std::string name(column);
  const auto found = std::find_if(columns_.begin(), columns_.end(), [&](const std::string& candidate) {
    return sqlite3_stricmp(candidate.c_str(), name.c_str()) == 0;
  });
  if (found != columns_.end()) return static_cast<std::size_t>(found - columns_.begin());
  throw Failure(kNoSuchColumn, "The event table has no column " + name +
                                   ". Put a backup of the event database in place of this one.");
}

}  // namespace keplo
