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
};

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
    default: {
      const auto* bytes = static_cast<const char*>(sqlite3_column_blob(statement, column));
      const int length = sqlite3_column_bytes(statement, column);
      return bytes == nullptr ? std::string() : std::string(bytes, static_cast<std::size_t>(length));
    }
  }
}

}  // namespace keplo
