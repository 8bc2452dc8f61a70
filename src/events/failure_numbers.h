#pragma once

namespace keplo {

/// Numbers of the failures that the event map finds itself; hosts know them from the error records that they
/// have always been given. A failure that SQLite finds carries SQLite's extended result code, and one of the
/// file system its errno.
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

}  // namespace keplo
