#pragma once

#include <exception>
#include <string>

#include "host/host_records.h"

namespace keplo {

/// The record that tells the host of a failure; ErrorDetail is left empty.
/// @param source the failing class
/// @param procedure the failing operation
/// @param date when it failed, in the caller's own form
HostErrorRecord ErrorRecordOf(const std::exception& failure, std::string source, std::string procedure,
                              std::string date);

}  // namespace keplo
