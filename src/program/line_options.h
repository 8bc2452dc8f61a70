#pragma once

#include "program/arguments.h"

namespace keplo {

/// Adds --sample-time, --no-shape and --hold: how recordings become samples. The help tells values that are
/// set already.
/// @param sampleTime microseconds; not positive for a usual one that the caller does not know
/// @param holdMs milliseconds; negative likewise
void AddLineOptions(Command& command, double& sampleTime, bool& shape, int& holdMs);

}  // namespace keplo
