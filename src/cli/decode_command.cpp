#include <algorithm>
#include <iostream>
#include <memory>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <vector>

#include "cli/analysis_option.h"
#include "cli/commands.h"
#include "formats/recording.h"
#include "line/press_capture.h"
#include "program/app_path.h"
#include "program/json_line.h"
#include "program/line_options.h"
#include "signal/monitored_press.h"
#include "signal/sample_bits.h"
#include "station/stage_text.h"

namespace keplo::cli {

namespace {

struct DecodeOptions {
  std::vector<std::string> Files;
  std::string AppPath, Analysis;
  bool Json = false;
  LineOptions Line;
};

/// What is known of a press; a capture that was not measured has neither protocol nor base time.
struct Row {
  std::string File;
  int Press = 0;
  Stage Ended = Stage::Empty;
  const Timing* Measured = nullptr;
  std::string Digits;
  std::optional<Analysis> ReadBy;

  bool HasCode() const { return Ended == Stage::Code; }
  bool HasDigits() const { return Ended == Stage::Code || Ended == Stage::Length; }
};

nlohmann::ordered_json ToJson(const Row& row) {
  nlohmann::ordered_json json;
  json["file"] = row.File;
  json["press"] = row.Press;
  json["stage"] = StageName(row.Ended);
  json["protocol"] = nullptr;
  json["base_t"] = nullptr;
  json["code"] = nullptr;
  json["bits"] = nullptr;
  json["analysis"] = nullptr;
  if (row.Measured != nullptr) {
    json["protocol"] = ProtoKindName(row.Measured->ProtoKind);
    json["base_t"] = row.Measured->BaseT;
  }
  if (row.HasCode()) json["code"] = row.Digits;
  if (row.HasDigits()) json["bits"] = row.Digits.size();
  if (row.ReadBy) json["analysis"] = AnalysisName(*row.ReadBy);
  return json;
}

std::string ToText(const Row& row) {
  std::string text = row.File + " press " + std::to_string(row.Press) + ": ";
  if (row.Measured != nullptr) {
    text += std::string(ProtoKindName(row.Measured->ProtoKind)) + ", base time " +
            std::to_string(row.Measured->BaseT) + " samples, ";
  }
  if (row.HasCode()) {
    text += "code " + row.Digits + " (" + std::to_string(row.Digits.size()) + " bits)";
    return row.ReadBy ? text + ", " + std::string(WordOf(*row.ReadBy)) : text;
  }
  text += "no code: " + DescribeStage(row.Ended);
  const bool alone = row.Ended == Stage::Doubtful && !row.Digits.empty();
  return alone ? text + ", its digits are " + row.Digits : text;
}

/// A single frame is judged as it was recorded: its copies in a held press would agree with it whatever it
/// lost.
MonitorReading ReadPress(const Press& press, const LineOptions& line, Analysis analysis, SignalState& state) {
  if (analysis == Analysis::Second) {
    LineOptions asRecorded = line;
    asRecorded.HoldMs = 0;
    MonitorReading reading =
        ReadCapture(SignalOfPress(press, kMonitorCaptureBytes, asRecorded), state, analysis);
    if (reading.Ended == Stage::Code || reading.Ended == Stage::Doubtful) return reading;
  }
  return ReadCapture(SignalOfPress(press, kMonitorCaptureBytes, line), state, analysis);
}

bool WasMeasured(Stage ended) { return ended > Stage::NoTiming; }

/// @return whether every press of the recording gave a code
bool DecodeRecording(const Recording& recording, const DecodeOptions& options, Analysis analysis) {
  bool all = true;
  Row row;
  row.File = recording.Path;
  for (const Press& press : recording.Presses) {
    SignalState state;
    const MonitorReading reading = ReadPress(press, options.Line, analysis, state);
    ++row.Press;
    row.Ended = reading.Ended;
    row.Measured = WasMeasured(reading.Ended) ? &state.Measured : nullptr;
    row.Digits = reading.Digits;
    row.ReadBy = reading.ReadBy;
    std::cout << (options.Json ? JsonLine(ToJson(row)) : ToText(row)) << '\n';
    all = all && row.HasCode();
  }
  return all;
}

Analysis AnalysisFor(const DecodeOptions& options) {
  if (!options.Analysis.empty()) return AnalysisNamed(options.Analysis);
  return options.AppPath.empty() ? Analysis::Second : AnalysisOf(OpenConfig(options.AppPath));
}

int Decode(const DecodeOptions& options) {
  const Analysis analysis = AnalysisFor(options);
  int status = kDone;
  for (const std::string& file : options.Files) {
    try {
      if (!DecodeRecording(LoadRecording(file), options, analysis)) status = std::max(status, kNoResult);
    } catch (const Failure& failure) {
      std::cerr << "keplo: " << failure.what() << '\n';
      status = kWrongUse;
    }
  }
  return status;
}

}  // namespace

void AddDecodeCommand(Command& root) {
  Command command = root.Sub("decode", "Tell what the monitor makes of recorded key presses");
  const auto options = std::make_shared<DecodeOptions>();
  command.Words("FILE", options->Files, "Recordings: mode2 text, +N -N lines, or .cap; - for standard input")
      .Required();
  command.Flag("--json", options->Json, "One JSON object a press");
  AddAppPathOption(command, options->AppPath);
  AddAnalysisOption(command, options->Analysis);
  AddLineOptions(command, options->Line.SampleTime, options->Line.Shape, options->Line.HoldMs);
  command.Runs([options] { return Decode(*options); });
}

}  // namespace keplo::cli
