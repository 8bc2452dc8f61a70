#pragma once

namespace keplo {

/// Numbers of failures found by the event map itself; hosts know them from error records. Creating a database
/// file fails with the system's errno instead.
enum FailureNumbers {
  kNumberTooLarge = 6,
  kWrongType = 13,
  kObjectNotSet = 91,
  kNullValue = 94,
  kKeyTaken = 457,
  kNoCurrentRow = 3021,
  kRowsReadOnly = 3251,
  kNoSuchColumn = 3265,
  kObjectClosed = 3704,
  kObjectOpen = 3705,
  kRowGone = -2147217864,
};

/// Added to SQLite's extended result codes, which are below 2^16, to keep them apart from errno values.
inline constexpr int kSqliteFailures = 0x10000;

constexpr int SqliteFailureNumber(int resultCode) { return kSqliteFailures + resultCode; }

}  // namespace keplo
