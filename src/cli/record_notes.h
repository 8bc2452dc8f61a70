#pragma once

#include <string>

#include "signal/recorded_press.h"

namespace keplo::cli {

/// Why a recorded press has no code that could be learned, for a person; empty if it has one.
std::string WhyNoCode(const RecordReading& reading);

}  // namespace keplo::cli
