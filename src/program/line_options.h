#pragma once

#include <cstdint>
#include <optional>

#include "program/arguments.h"

namespace keplo {

/// Adds --sample-time, --no-shape and --hold: how recordings become samples. The help tells values that are
/// set already.
/// @param sampleTime microseconds; not positive for a usual one that the caller does not know
/// @param holdMs milliseconds; negative likewise
void AddLineOptions(Command& command, double& sampleTime, bool& shape, int& holdMs);

/// Adds --port: another port than that of the settings, for this run.
Argument AddPortOption(Command& command, std::optional<std::int32_t>& port);

}  // namespace keplo
