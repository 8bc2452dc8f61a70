#pragma once

namespace keplo {

/// Numbers of the failures that the event map finds itself; hosts know them from the error records that they
/// have always been given. None of them is met while a database file is made, where a failure carries the
/// system's errno.
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

/// A failure that SQLite finds carries this plus SQLite's extended result code, so that no number stands for
/// two things: SQLite counts its codes from 1 as the system does its errno, and they stay below 2^16.
inline constexpr int kSqliteFailures = 0x10000;

constexpr int SqliteFailureNumber(int resultCode) { return kSqliteFailures + resultCode; }

}  // namespace keplo
