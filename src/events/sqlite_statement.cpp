#include "events/sqlite_statement.h"

#include <sqlite3.h>

#include "events/failure_numbers.h"
#include "events/sqlite_failure.h"

namespace keplo {

namespace {

struct Binder {
  sqlite3_stmt* Statement;
  int Index;

  int operator()(std::monostate) const { return sqlite3_bind_null(Statement, Index); }
  int operator()(std::int64_t number) const { return sqlite3_bind_int64(Statement, Index, number); }
  int operator()(double number) const { return sqlite3_bind_double(Statement, Index, number); }
  int operator()(const std::string& text) const {
    return sqlite3_bind_text64(Statement, Index, text.data(), text.size(), SQLITE_TRANSIENT, SQLITE_UTF8);
  }
  int operator()(const SqlBytes& value) const {
    return sqlite3_bind_blob64(Statement, Index, value.Bytes.data(), value.Bytes.size(), SQLITE_TRANSIENT);
  }
};

std::string Copy(const void* bytes, int length) {
  return {static_cast<const char*>(bytes), static_cast<std::size_t>(length)};
}

bool HoldsStatement(std::string_view text) {
  return text.find_first_not_of(" \t\r\n;") != std::string_view::npos;
}

}  // namespace

void SqliteStatement::Finalizer::operator()(sqlite3_stmt* statement) const { sqlite3_finalize(statement); }

SqliteStatement::SqliteStatement(sqlite3* database, std::string_view sql) : database_(database) {
  sqlite3_stmt* statement = nullptr;
  const char* tail = sql.data();
  const int code = sqlite3_prepare_v2(database, sql.data(), static_cast<int>(sql.size()), &statement, &tail);
  statement_.reset(statement);
  if (code != SQLITE_OK) throw FailureOf(database);
  if (statement == nullptr || HoldsStatement(sql.substr(static_cast<std::size_t>(tail - sql.data())))) {
    throw Failure(SqliteFailureNumber(SQLITE_MISUSE),
                  "Expected exactly one SQL statement, but the text is: " + std::string(sql));
  }
}

void SqliteStatement::Bind(int index, const SqlValue& value) {
  if (std::visit(Binder{statement_.get(), index}, value) != SQLITE_OK) throw FailureOf(database_);
}

bool SqliteStatement::Step() {
  switch (sqlite3_step(statement_.get())) {
    case SQLITE_ROW:
      return true;
    case SQLITE_DONE:
      return false;
    default:
      throw FailureOf(database_);
  }
}

int SqliteStatement::ColumnCount() const { return sqlite3_column_count(statement_.get()); }

std::string SqliteStatement::ColumnName(int column) const {
  return sqlite3_column_name(statement_.get(), column);
}

SqlValue SqliteStatement::Value(int column) const {
  sqlite3_stmt* statement = statement_.get();
  switch (sqlite3_column_type(statement, column)) {
    case SQLITE_NULL:
      return {};
    case SQLITE_INTEGER:
      return sqlite3_column_int64(statement, column);
    case SQLITE_FLOAT:
      return sqlite3_column_double(statement, column);
    case SQLITE_BLOB: {
      const void* bytes = sqlite3_column_blob(statement, column);  // null for an empty value
      return SqlBytes{bytes == nullptr ? "" : Copy(bytes, sqlite3_column_bytes(statement, column))};
    }
    default: {
      const unsigned char* text = sqlite3_column_text(
          statement, column);  // before sqlite3_column_bytes, so that that is the length of the UTF-8
      if (text == nullptr) throw FailureOf(database_);
      return Copy(text, sqlite3_column_bytes(statement, column));
    }
  }
}

namespace {

template <typename Value>
Value First(sqlite3* database, std::string_view sql) {
  SqliteStatement statement(database, sql);
  if (!statement.Step()) return {};
  const SqlValue value = statement.Value(0);
  const auto* found = std::get_if<Value>(&value);
  return found == nullptr ? Value() : *found;
}

}  // namespace

std::int64_t FirstNumber(sqlite3* database, std::string_view sql) {
  return First<std::int64_t>(database, sql);
}

std::string FirstText(sqlite3* database, std::string_view sql) { return First<std::string>(database, sql); }

}  // namespace keplo
