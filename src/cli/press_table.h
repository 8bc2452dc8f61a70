#pragma once

#include <functional>
#include <nlohmann/json_fwd.hpp>
#include <string>
#include <vector>

#include "cli/open_install.h"
#include "formats/recording.h"
#include "line/shaping/shaper.h"
#include "program/arguments.h"
#include "signal/analysis_choice.h"
#include "signal/monitored_press.h"
#include "signal/signal_state.h"

namespace keplo::cli {

/// Which presses to read, and how.
struct PressOptions {
  std::vector<std::string> Files;
  std::string AppPath, Analysis;
  bool Json = false;
  LineOptions Line;
};

/// @return the recordings that are given
Argument AddPressOptions(Command& command, PressOptions& options);

/// The analysis that the options ask for.
/// @param config the one of --app-path; null without that option, or without a file there
Analysis AnalysisFor(const PressOptions& options, const OpenedConfig* config);

/// What the monitor makes of a press by an analysis.
/// @param state takes the capture
MonitorReading ReadAsMonitor(const Press& press, const LineOptions& line, Analysis analysis,
                             SignalState& state);

/// What there is to tell of one press.
struct PressRow {
  bool HasCode = false;
  std::string Text;                  // for a person
  std::string Remark;                // for a person who has JSON printed; may be empty
  std::vector<std::string> Details;  // lines below the text, for a person
};

/// Reads one press.
/// @param json takes the fields of the press; null if none are wanted
using ReadPress = std::function<PressRow(const Press& press, nlohmann::ordered_json* json)>;

/// Prints the row of one press.
/// @param source what it was recorded from
/// @param number of the press, from 1
/// @param read gives the row, as ReadPress does
/// @return whether it has a code
bool PrintPress(const std::string& source, int number, bool asJson,
                const std::function<PressRow(nlohmann::ordered_json* json)>& read);

/// Prints a row for each press of each file, and tells which files cannot be read.
/// @return the exit code
int PrintPresses(const PressOptions& options, const ReadPress& read);

/// What an analysis is called in a line for a person: "first analysis", "second look".
std::string_view WordOf(Analysis analysis);

/// How the monitor and the window of an install read captures.
Analysis AnalysisOf(const OpenedConfig& config);

}  // namespace keplo::cli
