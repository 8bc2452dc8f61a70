#pragma once

#include <string>

#include "signal/recorded_press.h"

namespace keplo {

/// Why a recording has no code that could be learned, and what to do about it; empty if it has one.
std::string WhyNotLearnable(const RecordReading& reading);

}  // namespace keplo
