#pragma once

#include <string>

#include "formats/recording.h"
#include "line/shaping/shaper.h"
#include "signal/analysis_choice.h"
#include "signal/monitored_press.h"
#include "signal/signal_state.h"

namespace keplo::cli {

/// How far an analysis came with a press.
struct Attempt {
  MonitorReading Reading;
  std::string Text;  // one line: where it ended, what it measured, why there is no code
};

/// Reads a press with one analysis, as the monitor does.
/// @param state receives the capture
Attempt TryAnalysis(const Press& press, const LineOptions& line, Analysis analysis, SignalState& state);

}  // namespace keplo::cli
