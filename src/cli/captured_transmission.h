#pragma once

#include "formats/pulse_text.h"
#include "line/replay_line.h"

namespace keplo::cli {

/// A sent signal as a receiver would record it: it begins with a mark and ends with a long silence.
/// @return empty if the signal has no mark, or its slots have no length
PulseTrain PulsesOf(const LineOutput::Signal& signal);

}  // namespace keplo::cli
