#pragma once

#include <exception>
#include <stdexcept>
#include <string>

#include "host/host_records.h"

namespace keplo {

/// The record that reports a failure to the host; ErrorDetail is left empty.
/// @param source the failing class
/// @param procedure the failing operation
/// @param date when it failed, in the caller's format
HostErrorRecord ErrorRecordOf(const std::exception& failure, std::string source, std::string procedure,
                              std::string date);

/// Calls `report` with the exception being handled, or a stand-in if it is not a std::exception. Exceptions
/// from `report` are dropped, since nobody is left to report them to.
template <typename Report>
void ReportCurrentFailure(Report report) noexcept {
  try {
    try {
      throw;
    } catch (const std::exception& failure) {
      report(failure);
    } catch (...) {
      report(std::runtime_error("A failure of an unknown kind"));
    }
  } catch (...) {
    return;
  }
}

}  // namespace keplo
