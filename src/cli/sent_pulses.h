#pragma once

#include "formats/pulse_text.h"
#include "line/replay_line.h"

namespace keplo::cli {

/// A signal that was sent as a receiver would record it: mark first, a silence that ends the key press last.
/// @return empty if the signal has no mark or its slots no length
PulseTrain PulsesOf(const LineOutput::Signal& signal);

}  // namespace keplo::cli
