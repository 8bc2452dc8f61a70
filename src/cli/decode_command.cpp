#include <memory>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>

#include "cli/commands.h"
#include "cli/press_table.h"
#include "cli/raw_texts.h"
#include "config/raw_lookup.h"
#include "signal/sample_bits.h"
#include "signal/stage_text.h"

namespace keplo::cli {

namespace {

/// A press as the monitor reads it.
struct DecodedPress {
  MonitorReading Reading;
  std::optional<Timing> Measured;  // none if the reading ended before it was measured
  bool CouldBeRaw = false;         // whether it is a clean signal without a code
  std::string Ambiguity = {};      // see AmbiguousRawText; usually empty

  bool HasCode() const { return Reading.HasCode(); }
  bool HasDigits() const { return HasCode() || Reading.Ended == Stage::Length; }
};

void Describe(const DecodedPress& press, nlohmann::ordered_json& json) {
  const MonitorReading& reading = press.Reading;
  json["stage"] = StageName(reading.Ended);
  for (const char* field : {"protocol", "base_t", "code", "bits", "analysis"}) json[field] = nullptr;
  if (reading.Ended == Stage::Raw) json["protocol"] = kRawKind;
  if (press.Measured) json["protocol"] = ProtoKindName(press.Measured->ProtoKind);
  if (press.Measured) json["base_t"] = press.Measured->BaseT;
  if (press.HasCode()) json["code"] = reading.Digits;
  if (press.HasDigits()) json["bits"] = reading.Digits.size();
  if (reading.ReadBy) json["analysis"] = AnalysisName(*reading.ReadBy);
}

std::string ToText(const DecodedPress& press) {
  const MonitorReading& reading = press.Reading;
  std::string text;
  if (press.Measured) {
    text = std::string(ProtoKindName(press.Measured->ProtoKind)) + ", base time " +
           std::to_string(press.Measured->BaseT) + " samples, ";
  }
  if (reading.Ended == Stage::Raw) {
    return "raw command G" + reading.Digits;
  }
  if (press.HasCode()) {
    text += "code " + reading.Digits + " (" + std::to_string(reading.Digits.size()) + " bits)";
    return reading.ReadBy ? text + ", " + std::string(AnalysisText(*reading.ReadBy)) : text;
  }
  text += "no code: " + DescribeStage(reading.Ended);
  const bool alone = reading.Ended == Stage::Doubtful && !reading.Digits.empty();
  if (alone) return text + ", its digits are " + reading.Digits + std::string(kCodeOffer);
  if (!press.Ambiguity.empty()) return text + "; it " + press.Ambiguity;
  return press.CouldBeRaw ? text.append(kRawOffer) : text;
}

bool WasMeasured(Stage ended) { return ended > Stage::NoTiming && ended != Stage::Raw; }

/// Looks for a learned command or, failing that, whether the signal could become a raw command.
void MatchCommands(const OpenedConfig* config, SignalState& state, DecodedPress& press) {
  if (config != nullptr) ProveByLearning(config->Mod.Store, press.Reading);
  if (config != nullptr) MatchRawCommands(config->Mod.Store, state, press.Reading);
  if (press.Reading.HasCode()) return;
  if (config != nullptr) press.Ambiguity = AmbiguousRawText(config->Mod.Store, state);
  press.CouldBeRaw = FindLevels(HeardIn(state)).has_value();
}

int Decode(const PressOptions& options) {
  const bool named = options.Analysis.empty() && !options.AppPath.empty();
  // Needed for raw commands, even if it does not determine the analysis.
  const std::unique_ptr<OpenedConfig> config =
      !options.AppPath.empty() || HasInstall() ? LearnedCommands(options.AppPath) : nullptr;
  const Analysis analysis = AnalysisFor(options, named ? config.get() : nullptr);
  return PrintPresses(options, [&](const Press& press, nlohmann::ordered_json* json) {
    SignalState state;
    DecodedPress decoded{ReadAsMonitor(press, options.Line, analysis, state), {}};
    if (analysis == Analysis::Second) MatchCommands(config.get(), state, decoded);
    if (WasMeasured(decoded.Reading.Ended)) decoded.Measured = state.Measured;
    if (json != nullptr) Describe(decoded, *json);
    return PressRow{decoded.HasCode(), json == nullptr ? ToText(decoded) : "", "", {}};
  });
}

}  // namespace

void AddDecodeCommand(Command& root) {
  Command command = root.Sub("decode", "Tell what the monitor makes of recorded key presses");
  const auto options = std::make_shared<PressOptions>();
  AddPressOptions(command, *options).Required();
  command.Examples({"keplo decode samples/*.mode2",
                    "keplo synth --protocol RC5 --code 11000001001001 | keplo decode --json -"});
  command.Runs([options] { return Decode(*options); });
}

}  // namespace keplo::cli
