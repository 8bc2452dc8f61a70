#pragma once

#include <cstdint>
#include <optional>

#include "program/arguments.h"

namespace keplo {

/// Adds --sample-time, --no-shape and --hold, which control how recordings become samples. The help shows the
/// defaults.
/// @param sampleTime microseconds; not positive if the default is not known here
/// @param holdMs milliseconds; negative if the default is not known here
void AddLineOptions(Command& command, double& sampleTime, bool& shape, int& holdMs);

/// Adds --port, which overrides the port of the settings.
Argument AddPortOption(Command& command, std::optional<std::int32_t>& port);

}  // namespace keplo
