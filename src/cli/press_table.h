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

/// @return the FILE argument
Argument AddPressOptions(Command& command, PressOptions& options);

/// The analysis specified by the options.
/// @param config that of --app-path; null without that option, or if there is no file
Analysis AnalysisFor(const PressOptions& options, const OpenedConfig* config);

/// Reads a press as the monitor does.
/// @param state receives the capture
MonitorReading ReadAsMonitor(const Press& press, const LineOptions& line, Analysis analysis,
                             SignalState& state);

/// The output for a press.
struct PressRow {
  bool HasCode = false;
  std::string Text;                  // not used with JSON
  std::string Remark;                // printed to standard error with JSON; may be empty
  std::vector<std::string> Details;  // lines below the text
};

/// Reads a press.
/// @param json receives the fields of the press; null if the output is text
using ReadPress = std::function<PressRow(const Press& press, nlohmann::ordered_json* json)>;

/// Prints the row of a press.
/// @param source what it was recorded from
/// @param number of the press, from 1
/// @param read returns the row, like ReadPress
/// @return whether the press has a code
bool PrintPress(const std::string& source, int number, bool asJson,
                const std::function<PressRow(nlohmann::ordered_json* json)>& read);

/// Prints a row for each press in each file, and reports files that cannot be read.
/// @return the exit code
int PrintPresses(const PressOptions& options, const ReadPress& read);

/// The name of an analysis in texts: "first analysis", "second look".
std::string_view AnalysisText(Analysis analysis);

/// The analysis chosen in the settings.
Analysis AnalysisOf(const OpenedConfig& config);

}  // namespace keplo::cli
