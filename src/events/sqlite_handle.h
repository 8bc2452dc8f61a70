#pragma once

#include <memory>

struct sqlite3;

namespace keplo {

struct SqliteCloser {
  void operator()(sqlite3* database) const;
};

/// An open SQLite database, closed on destruction.
using SqliteHandle = std::unique_ptr<sqlite3, SqliteCloser>;

/// Runs statements that return no rows.
/// @throws Failure as FailureOf describes it
void RunSql(sqlite3* database, const char* sql);

}  // namespace keplo
