#include "cli/press_table.h"

#include <algorithm>
#include <iostream>
#include <nlohmann/json.hpp>

#include "cli/outcome.h"
#include "config/read_settings.h"
#include "line/press_capture.h"
#include "program/app_path.h"
#include "program/json_line.h"
#include "program/line_options.h"
#include "program/printable.h"

namespace keplo::cli {

namespace {

/// @return whether there were no complaints and every press has a code
bool PrintRecording(const Recording& recording, bool asJson, const ReadPress& read) {
  for (const std::string& complaint : recording.Complaints) Tell(complaint);
  bool all = recording.Complaints.empty();
  int number = 0;
  for (const Press& press : recording.Presses) {
    const bool hasCode =
        PrintPress(recording.Path, ++number, asJson, [&](auto* json) { return read(press, json); });
    all = all && hasCode;
  }
  return all;
}

}  // namespace

Argument AddPressOptions(Command& command, PressOptions& options) {
  const Argument files =
      command.Words("FILE", options.Files,
                    "Recordings: mode2 text, +N -N lines, .cap, or files of remotes; - for standard input");
  command.Flag("--json", options.Json, "One JSON object a press");
  AddAppPathOption(command, options.AppPath);
  command.Choice(
      "--analysis", options.Analysis,
      {std::string(AnalysisName(Analysis::First)), std::string(AnalysisName(Analysis::Second))},
      "Read with the first analysis or the second look; without it as the keplo.cfg of --app-path says, "
      "and with the second look without that");
  AddLineOptions(command, options.Line.SampleTime, options.Line.Shape, options.Line.HoldMs);
  return files;
}

Analysis AnalysisFor(const PressOptions& options, const OpenedConfig* config) {
  if (!options.Analysis.empty()) {
    return options.Analysis == AnalysisName(Analysis::First) ? Analysis::First : Analysis::Second;
  }
  return config == nullptr ? Analysis::Second : AnalysisOf(*config);
}

MonitorReading ReadAsMonitor(const Press& press, const LineOptions& line, Analysis analysis,
                             SignalState& state) {
  LineOptions readBy = line;
  readBy.ReadBy = &analysis;
  state.SampleTime = line.SampleTime;
  return ReadCapture(SignalOfPress(press, kMonitorCaptureBytes, readBy), state, analysis);
}

bool PrintPress(const std::string& source, int number, bool asJson,
                const std::function<PressRow(nlohmann::ordered_json* json)>& read) {
  nlohmann::ordered_json json;
  json["file"] = source;
  json["press"] = number;
  const PressRow row = read(asJson ? &json : nullptr);
  const std::string place = source + " press " + std::to_string(number) + ": ";
  if (asJson) {
    std::cout << JsonLine(json) << std::endl;
    if (!row.Remark.empty()) Tell(place + row.Remark);
  } else {
    std::cout << Printable(place + row.Text) << std::endl;
    for (const std::string& line : row.Details) std::cout << "  " << Printable(line) << std::endl;
  }
  return row.HasCode;
}

int PrintPresses(const PressOptions& options, const ReadPress& read) {
  int status = kDone;
  for (const std::string& file : options.Files) {
    try {
      if (!PrintRecording(LoadRecording(file), options.Json, read)) status = std::max(status, kNoResult);
    } catch (const FormatError& failure) {
      Tell(failure.what());
      status = kUsageError;
    }
  }
  return status;
}

std::string_view AnalysisText(Analysis analysis) {
  return analysis == Analysis::First ? "first analysis" : "second look";
}

Analysis AnalysisOf(const OpenedConfig& config) {
  Settings settings;
  ReadSettings(config.Mod.Store, settings);
  return settings.Analysis;
}

}  // namespace keplo::cli
