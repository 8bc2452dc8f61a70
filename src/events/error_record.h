#pragma once

#include <exception>
#include <stdexcept>
#include <string>

#include "host/host_records.h"

namespace keplo {

/// The record that tells the host of a failure; ErrorDetail is left empty.
/// @param source the failing class
/// @param procedure the failing operation
/// @param date when it failed, in the caller's own form
HostErrorRecord ErrorRecordOf(const std::exception& failure, std::string source, std::string procedure,
                              std::string date);

/// Hands the exception that is being handled to `tell`; one of a foreign kind comes as a std::exception that
/// says so. A failure of `tell` itself is dropped, for nobody is left to hear of it.
template <typename Tell>
void ReportCurrentFailure(Tell tell) noexcept {
  try {
    try {
      throw;
    } catch (const std::exception& failure) {
      tell(failure);
    } catch (...) {
      tell(std::runtime_error("A failure of an unknown kind"));
    }
  } catch (...) {
    return;
  }
}

}  // namespace keplo
