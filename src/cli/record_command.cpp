#include <filesystem>
#include <memory>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <utility>

#include "cli/commands.h"
#include "cli/live_line.h"
#include "cli/open_install.h"
#include "cli/outcome.h"
#include "cli/press_table.h"
#include "cli/raw_texts.h"
#include "cli/reference.h"
#include "config/lookup.h"
#include "config/raw_lookup.h"
#include "line/press_capture.h"
#include "program/app_path.h"
#include "program/line_options.h"
#include "signal/recorded_press.h"
#include "signal/sample_time.h"
#include "signal/stage_text.h"
#include "typed_command.h"

namespace keplo::cli {

namespace {

struct RecordOptions : PressOptions {
  bool Live = false;
  int Count = 1;
  std::optional<std::int32_t> Port;
};

/// The raw command of a press that has no other command.
struct RawPress {
  std::size_t Lengths = 0;  // of a clean signal; 0 if it is not clean or has a code
  std::string KnownAs, Digits;
  std::string Offer;  // what can be done if it is not known, to follow the reason; usually empty
};

RawPress MatchRaw(const OpenedConfig* config, SignalState& state, bool isRead) {
  RawPress press;
  const HeardLengths heard = HeardIn(state);
  if (!isRead && FindLevels(heard)) {
    press.Lengths = heard.Runs.size();
    press.Offer = kRawOffer;
  }
  if (config == nullptr) return press;
  const RawMatch match = config->Mod.Store.Raw.Index.Find(heard);
  const auto found = match.Alone
                         ? keplo::FindCommand(config->Text(), match.Digits, /*limit=*/0, Analysis::Second)
                         : std::nullopt;
  if (found) {
    press = {heard.Runs.size(), found->Reference(), std::string(match.Digits), {}};
  } else if (const std::string alike = AmbiguousRawText(config->Mod.Store, state);
             !isRead && !alike.empty()) {
    press.Offer = "; it " + alike;
  }
  return press;
}

std::string KnownAs(OpenedConfig* config, const RecordReading& reading) {
  if (config == nullptr || reading.Ended != RecordStage::Code) return {};
  CfgStore& store = config->Mod.Store;
  if (!LookupCommand(store, reading.Code, reading.ProtoKind, reading.ReadBy)) return {};
  return CommandReference{store.CurProtocol, store.CurCommand}.Text();
}

/// Whether the line code is certain; a fragment could belong to several.
bool NamesKind(const RecordReading& reading) {
  return reading.Ended == RecordStage::Unknown || reading.Ended == RecordStage::Code;
}

nlohmann::json ToggleJson(char toggle) {
  if (toggle == '0' || toggle == '1') return toggle - '0';
  return std::string(1, toggle);
}

/// Fields that the window does not show are null.
void Describe(const RecordReading& reading, const std::string& knownAs, nlohmann::ordered_json& json) {
  for (const char* field :
       {"protocol", "base_t", "pulse_us", "code", "bits", "repeats", "sync_type", "address", "command",
        "extended", "toggle", "ones", "zeros", "known_as", "analysis"}) {
    json[field] = nullptr;
  }
  if (reading.Ended < RecordStage::Unknown) return;
  json["base_t"] = reading.BaseT;
  json["pulse_us"] = reading.PulseUs();
  if (NamesKind(reading)) json["protocol"] = ProtoKindName(reading.ProtoKind);
  if (reading.Ended < RecordStage::Fragment) return;
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
  return text + ", " + std::string(AnalysisText(reading.ReadBy));
}

std::string ToText(const RawPress& raw) { return "raw command G" + raw.Digits + ", known as " + raw.KnownAs; }

void DescribeRaw(const RawPress& raw, nlohmann::ordered_json& json) {
  if (raw.Lengths > 0) json["raw_lengths"] = raw.Lengths;
  if (raw.KnownAs.empty()) return;
  json["protocol"] = kRawKind;
  // By its lengths, whatever base time it seemed to have.
  json["base_t"] = json["pulse_us"] = nullptr;
  json["analysis"] = AnalysisName(Analysis::Second);
  json["code"] = raw.Digits;
  json["bits"] = raw.Digits.size();
  json["known_as"] = raw.KnownAs;
}

PressRow Explain(const std::string& capture, double sampleTime, Analysis analysis, OpenedConfig* config,
                 nlohmann::ordered_json* json) {
  SignalState state;
  state.SampleTime = sampleTime;
  const RecordReading reading = ReadRecordedCapture(capture, state, analysis);
  const std::string knownAs = KnownAs(config, reading);
  const std::string reason = WhyNoCode(reading);
  RawPress raw;
  if (analysis == Analysis::Second && knownAs.empty()) raw = MatchRaw(config, state, reason.empty());
  if (json != nullptr) Describe(reading, knownAs, *json);
  if (json != nullptr) DescribeRaw(raw, *json);
  if (!raw.KnownAs.empty()) return PressRow{true, json == nullptr ? ToText(raw) : "", "", {}};
  if (json == nullptr) return PressRow{reason.empty(), ToText(reading, knownAs) + raw.Offer, "", {}};
  return PressRow{reason.empty(), "", reason.empty() ? "" : "no code: " + reason + raw.Offer, {}};
}

int RecordFiles(const RecordOptions& options) {
  const std::unique_ptr<OpenedConfig> config = LearnedCommands(options.AppPath);
  const Analysis analysis = AnalysisFor(options, options.AppPath.empty() ? nullptr : config.get());
  return PrintPresses(options, [&](const Press& press, nlohmann::ordered_json* json) {
    LineOptions line = options.Line;
    line.ReadBy = &analysis;
    return Explain(CaptureOfPress(press, kRecordCaptureBytes, line), line.SampleTime, analysis, config.get(),
                   json);
  });
}

/// The next press on the line; empty if there is none.
std::string Receive(LiveLine& live, const Settings& settings) {
  std::string capture(kRecordCaptureBytes, '\0');
  const auto limit = static_cast<std::int32_t>(kRecordCaptureBytes);
  const std::int32_t received = settings.ReceiverKind == 1
                                    ? live.Line().IRRecordN(capture, settings.ProcDelay, limit)
                                    : live.Line().IRRecord(capture, settings.ProcDelay, limit);
  if (received == 0) capture.clear();
  return capture;
}

int RecordLive(const RecordOptions& options) {
  OpenedConfig config(options.AppPath);
  LiveLine live(config.Mod, options.Port, options.Line);
  const Analysis analysis = AnalysisFor(options, &config);
  Tell("press a key of the remote; " + live.Name() + " listens for " +
       std::to_string(kLongestRecordWait.count()) + " seconds at most");
  int status = kDone;
  for (int number = 1; number <= options.Count; ++number) {
    const std::string capture = Receive(live, config.Mod.Settings);
    if (capture.empty()) {
      throw Refused(live.WhyNot().empty()
                        ? "No signal came. " + TypedCommand("ports --watch", options.AppPath) +
                              " shows the line itself."
                        : live.WhyNot());
    }
    const bool hasCode = PrintPress(live.Name(), number, options.Json, [&](nlohmann::ordered_json* json) {
      return Explain(capture, SampleTimeOf(config.Mod.Settings.ProcDelay), analysis, &config, json);
    });
    if (!hasCode) status = kNoResult;
  }
  return status;
}

}  // namespace

void AddRecordCommand(Command& root) {
  Command command = root.Sub("record", "Explain recorded key presses as the learning window does");
  const auto options = std::make_shared<RecordOptions>();
  const Argument files = AddPressOptions(command, *options);
  Argument live =
      command.Flag("--live", options->Live, "Wait for key presses on the line, in place of recordings");
  AddPortOption(command, options->Port).Needs(live);
  command.Number("--count", options->Count, "How many key presses to wait for", {1, 1000}).Needs(live);
  live.Excludes(files);
  command.Examples({"keplo record samples/sony_tv_1.mode2", "keplo record --live --count 2"});
  command.Runs([options] {
    if (options->Live) return RecordLive(*options);
    if (options->Files.empty()) throw UsageError("FILE is required, or --live");
    return RecordFiles(*options);
  });
}

}  // namespace keplo::cli
