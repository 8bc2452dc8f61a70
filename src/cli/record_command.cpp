#include <algorithm>
#include <filesystem>
#include <iostream>
#include <memory>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <vector>

#include "cli/analysis_option.h"
#include "cli/commands.h"
#include "cli/open_map.h"
#include "config/lookup.h"
#include "formats/recording.h"
#include "line/press_capture.h"
#include "program/app_path.h"
#include "program/json_line.h"
#include "program/line_options.h"
#include "signal/recorded_press.h"
#include "station/stage_text.h"

namespace keplo::cli {

namespace {

struct RecordOptions {
  std::vector<std::string> Files;
  std::string AppPath, Analysis;
  bool Json = false;
  LineOptions Line;
};

bool HasInstall() try {
  RequireInstall({});
  return true;
} catch (const Failure&) {
  return false;
}

/// The learned commands, if there are any: without an install nothing is known, but all else can be told.
std::unique_ptr<OpenConfig> LearnedCommands(const std::string& appPath) {
  if (!IsAppPathNamed(appPath) && !HasInstall()) return nullptr;
  try {
    return std::make_unique<OpenConfig>(appPath);
  } catch (const Failure& failure) {
    if (!appPath.empty()) throw;
    std::cerr << "keplo: " << failure.what() << '\n';
    return nullptr;
  }
}

std::string KnownAs(OpenConfig* config, const RecordReading& reading) {
  if (config == nullptr || reading.Ended != RecordStage::Code) return {};
  CfgStore& store = config->Mod.Store;
  if (!LookupCommand(store, reading.Code, reading.ProtoKind, reading.ReadBy)) return {};
  return store.CurProtocol + "&" + store.CurCommand;
}

/// A fragment could be of any line code that begins like its own.
bool NamesKind(const RecordReading& reading) {
  return reading.Ended == RecordStage::Unknown || reading.Ended == RecordStage::Code;
}

nlohmann::json ToggleJson(char toggle) {
  if (toggle == '0' || toggle == '1') return toggle - '0';
  return std::string(1, toggle);
}

/// A null is where the window shows nothing.
nlohmann::ordered_json ToJson(const std::string& file, const RecordReading& reading,
                              const std::string& knownAs) {
  nlohmann::ordered_json json;
  json["file"] = file;
  for (const char* field :
       {"protocol", "base_t", "pulse_us", "code", "bits", "repeats", "sync_type", "address", "command",
        "extended", "toggle", "ones", "zeros", "known_as", "analysis"}) {
    json[field] = nullptr;
  }
  if (reading.Ended < RecordStage::Unknown) return json;
  json["base_t"] = reading.BaseT;
  json["pulse_us"] = reading.PulseUs();
  if (NamesKind(reading)) json["protocol"] = ProtoKindName(reading.ProtoKind);
  if (reading.Ended < RecordStage::Fragment) return json;
  json["analysis"] = AnalysisName(reading.ReadBy);
  json["bits"] = reading.Code.size();
  json["repeats"] = reading.Repeats;
  if (reading.SyncType) json["sync_type"] = *reading.SyncType;
  json["ones"] = reading.Runs.Ones;
  json["zeros"] = reading.Runs.Zeros;
  if (reading.Ended == RecordStage::Code) json["code"] = reading.Code;
  if (reading.Values) json["address"] = reading.Values->Address;
  if (reading.Values) json["command"] = reading.Values->Command;
  if (reading.Values && reading.Values->Extended) json["extended"] = *reading.Values->Extended;
  if (reading.Toggle) json["toggle"] = ToggleJson(*reading.Toggle);
  if (!knownAs.empty()) json["known_as"] = knownAs;
  return json;
}

std::string ToText(const RecordReading& reading, const std::string& knownAs) {
  std::string text;
  if (reading.Ended >= RecordStage::Unknown) {
    if (NamesKind(reading)) text += std::string(ProtoKindName(reading.ProtoKind)) + ", ";
    text += "base time " + std::to_string(reading.BaseT) + " samples (" + std::to_string(reading.PulseUs()) +
            " us), ";
  }
  if (const std::string reason = WhyNoCode(reading); !reason.empty()) return text + "no code: " + reason;
  text += "code G" + reading.Code + " (" + std::to_string(reading.Code.size()) + " bits), ";
  text += reading.Repeats ? "repeats" : "does not repeat";
  if (reading.SyncType) text += ", sync type " + std::to_string(*reading.SyncType);
  if (reading.Values) {
    text += ", address " + std::to_string(reading.Values->Address) + ", command " +
            std::to_string(reading.Values->Command);
    if (reading.Values->Extended) text += ", extended " + std::to_string(*reading.Values->Extended);
  }
  if (reading.Toggle) text += std::string(", toggle ") + *reading.Toggle;
  text += knownAs.empty() ? ", not known" : ", known as " + knownAs;
  return text + ", " + std::string(WordOf(reading.ReadBy));
}

/// @param config that of the options, or of the user's own install
Analysis AnalysisFor(const RecordOptions& options, const OpenConfig* config) {
  if (!options.Analysis.empty()) return AnalysisNamed(options.Analysis);
  return options.AppPath.empty() || config == nullptr ? Analysis::Second : AnalysisOf(*config);
}

/// @return whether every press of the recording gave a code
bool Explain(const Recording& recording, const RecordOptions& options, OpenConfig* config) {
  const Analysis analysis = AnalysisFor(options, config);
  bool all = true;
  int number = 0;
  for (const Press& press : recording.Presses) {
    SignalState state;
    const RecordReading reading =
        ReadRecordedCapture(CaptureOfPress(press, kRecordCaptureBytes, options.Line), state, analysis);
    const std::string knownAs = KnownAs(config, reading);
    const std::string place = recording.Path + " press " + std::to_string(++number) + ": ";
    const std::string reason = WhyNoCode(reading);
    if (options.Json) {
      std::cout << JsonLine(ToJson(recording.Path, reading, knownAs)) << '\n';
      if (!reason.empty()) std::cerr << "keplo: " << place << "no code: " << reason << '\n';
    } else {
      std::cout << place << ToText(reading, knownAs) << '\n';
    }
    all = all && reason.empty();
  }
  return all;
}

int Record(const RecordOptions& options) {
  const std::unique_ptr<OpenConfig> config = LearnedCommands(options.AppPath);
  int status = kDone;
  for (const std::string& file : options.Files) {
    try {
      if (!Explain(LoadRecording(file), options, config.get())) status = std::max(status, kNoResult);
    } catch (const FormatError& failure) {
      std::cerr << "keplo: " << failure.what() << '\n';
      status = kWrongUse;
    }
  }
  return status;
}

}  // namespace

void AddRecordCommand(Command& root) {
  Command command = root.Sub("record", "Explain recorded key presses as the learning window does");
  const auto options = std::make_shared<RecordOptions>();
  command.Words("FILE", options->Files, "Recordings: mode2 text, +N -N lines, or .cap; - for standard input")
      .Required();
  command.Flag("--json", options->Json, "One JSON object a press");
  AddAppPathOption(command, options->AppPath);
  AddAnalysisOption(command, options->Analysis);
  AddLineOptions(command, options->Line.SampleTime, options->Line.Shape, options->Line.HoldMs);
  command.Runs([options] { return Record(*options); });
}

}  // namespace keplo::cli
