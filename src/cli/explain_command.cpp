#include <algorithm>
#include <cmath>
#include <memory>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <vector>

#include "cli/analysis_attempt.h"
#include "cli/commands.h"
#include "cli/length_groups.h"
#include "cli/press_table.h"
#include "config/lookup.h"
#include "config/raw_lookup.h"
#include "signal/raw/raw_levels.h"
#include "signal/stage_text.h"
#include "station/press_reasons.h"
#include "typed_command.h"

namespace keplo::cli {

namespace {

constexpr double kLongestMark = 50;  // milliseconds; no remote sends longer ones

/// What the command prints about a press.
struct Explanation {
  Attempt First, Second;
  std::vector<LengthGroup> Marks, Spaces;
  double Milliseconds = 0;
  bool AllLight = false, Cut = false;
  std::string Raw;        // how the raw commands match; empty if there are none
  std::string Ambiguity;  // names two raw commands that both match; usually empty
  std::string Reading, KnownAs, Advice;
  bool HasCode = false;
};

std::string KnownAs(const OpenedConfig* config, const MonitorReading& reading) {
  if (config == nullptr || !reading.HasCode()) return {};
  const auto found =
      FindCommand(config->Text(), reading.Digits, /*limit=*/0, reading.ReadBy.value_or(Analysis::Second));
  return found ? found->Reference() : "";
}

/// Whether the signal is a single mark, too long for any remote.
bool IsAllLight(SignalState& state) {
  const RunSpan runs = state.Runs.Read(state.Samples);
  return runs.size() == 1 && EndsInMark(runs) && runs.front() * state.SampleTime / 1000 >= kLongestMark;
}

std::string RawText(const OpenedConfig& config, SignalState& state, const MonitorReading& reading) {
  const RawIndex& index = config.Mod.Store.Raw.Index;
  if (index.Empty()) return {};
  const RawMatch match = index.Find(HeardIn(state));
  const auto nameOf = [&](std::string_view digits) {
    const auto found = FindCommand(config.Text(), digits, /*limit=*/0, Analysis::Second);
    return found ? found->Reference() : "G" + std::string(digits);
  };
  if (!match.Alone && reading.Ended == Stage::Raw)
    return nameOf(reading.Digits) + " fits, and behind it begins another press";
  if (match.Digits.empty()) return "none of " + std::to_string(index.Size()) + " fits";
  const std::string fits = nameOf(match.Digits) + " fits";
  return match.Alone ? fits : fits + ", and " + nameOf(match.Other) + " nearly as well: none is taken";
}

/// @param isSet whether the second look is the one of the settings
std::string AdviceOn(const Explanation& press, const MonitorReading& reading, Analysis analysis, bool isClean,
                     bool isSet, const std::string& appPath) {
  const std::string learn = TypedCommand("learn FILE --name 'SECTION&NAME'", appPath);
  if (press.AllLight) {
    return "The line is lit from beginning to end. If nothing lights it, the receiver rests at the other "
           "level: swap the receiver kind with " +
           TypedCommand("settings ITYPE NUMBER", appPath);
  }
  if (reading.HasCode()) return press.KnownAs.empty() ? "Learn it: " + learn : "";
  if (!press.Ambiguity.empty())
    return "It " + press.Ambiguity + ": " + TypedCommand("forget 'SECTION&NAME'", appPath);
  const bool isAlone = !reading.Digits.empty() && reading.Ended == Stage::Doubtful;
  if (isClean && !isAlone && analysis == Analysis::Second) {
    return "The lengths are clean and can be stored as a raw command: " + learn;
  }
  if (analysis == Analysis::First && (isClean || press.Second.Reading.HasCode())) {
    return "The second look can " +
           std::string(press.Second.Reading.HasCode() ? "read it" : "learn its lengths") + ": " +
           (isSet ? "leave out --analysis first" : TypedCommand("settings ANALYSIS 1", appPath));
  }
  return AdviceFor(reading.Ended, appPath);
}

Explanation Explain(const Press& press, const PressOptions& options, Analysis analysis,
                    const OpenedConfig* config) {
  Explanation explanation;
  SignalState state;
  explanation.First = TryAnalysis(press, options.Line, Analysis::First, state);
  explanation.Second = TryAnalysis(press, options.Line, Analysis::Second, state);
  HeardLengths heard = HeardIn(state);
  explanation.AllLight = IsAllLight(state);
  if (explanation.AllLight) heard.Runs = state.Runs.Read(state.Samples);
  explanation.Marks = MarkGroups(heard);
  explanation.Spaces = SpaceGroups(heard);
  explanation.Cut = heard.Cut;
  for (std::size_t i = 0; i < heard.Runs.size(); ++i) explanation.Milliseconds += heard.Us(i) / 1000;
  MonitorReading reading =
      analysis == Analysis::First ? explanation.First.Reading : explanation.Second.Reading;
  if (config != nullptr) ProveByLearning(config->Mod.Store, reading);
  if (analysis == Analysis::Second && config != nullptr) {
    MatchRawCommands(config->Mod.Store, state, reading);
    explanation.Raw = RawText(*config, state, reading);
    explanation.Ambiguity = AmbiguousRawText(config->Mod.Store, state);
  }
  explanation.HasCode = reading.HasCode();
  explanation.KnownAs = KnownAs(config, reading);
  explanation.Reading =
      explanation.HasCode ? "code G" + reading.Digits : "no code: " + DescribeStage(reading.Ended);
  const bool isSet = config == nullptr || AnalysisOf(*config) == Analysis::Second;
  explanation.Advice =
      AdviceOn(explanation, reading, analysis, FindLevels(heard).has_value(), isSet, options.AppPath);
  return explanation;
}

std::vector<std::string> DetailsOf(const Explanation& press) {
  std::vector<std::string> lines = {
      "heard: " + std::to_string(std::lround(press.Milliseconds)) + " ms" +
          (press.Cut ? ", and the buffer was full before the signal ended" : ""),
      "marks: " + GroupsText(press.Marks),
      "spaces: " + GroupsText(press.Spaces),
      "first analysis: " + press.First.Text,
      "second look: " + press.Second.Text,
  };
  if (!press.Raw.empty()) lines.push_back("raw commands: " + press.Raw);
  if (!press.Advice.empty()) lines.push_back("to do: " + press.Advice);
  return lines;
}

nlohmann::ordered_json OrNull(const std::string& text) {
  return text.empty() ? nlohmann::ordered_json() : nlohmann::ordered_json(text);
}

void FillFields(const Explanation& press, nlohmann::ordered_json& json) {
  json["ms"] = std::lround(press.Milliseconds);
  json["marks"] = JsonOf(press.Marks);
  json["spaces"] = JsonOf(press.Spaces);
  json["first"] = StageName(press.First.Reading.Ended);
  json["second"] = StageName(press.Second.Reading.Ended);
  json["reading"] = press.Reading;
  json["known_as"] = OrNull(press.KnownAs);
  json["to_do"] = OrNull(press.Advice);
}

int ExplainAll(const PressOptions& options) {
  const std::unique_ptr<OpenedConfig> config =
      !options.AppPath.empty() || HasInstall() ? LearnedCommands(options.AppPath) : nullptr;
  const Analysis analysis = AnalysisFor(options, config.get());
  return PrintPresses(options, [&](const Press& press, nlohmann::ordered_json* json) {
    const Explanation explanation = Explain(press, options, analysis, config.get());
    if (json != nullptr) FillFields(explanation, *json);
    const std::string name = explanation.KnownAs.empty() ? "" : ", which is " + explanation.KnownAs;
    return PressRow{explanation.HasCode, explanation.Reading + name, "", DetailsOf(explanation)};
  });
}

}  // namespace

void AddExplainCommand(Command& root) {
  Command command = root.Sub(
      "explain", "Tell what was heard of recorded key presses, how far each reading came, what to do");
  const auto options = std::make_shared<PressOptions>();
  AddPressOptions(command, *options).Required();
  command.Examples({"keplo explain samples/nec_tv_mute.mode2",
                    "keplo synth --protocol RC5 --code 11000001001001 | keplo explain -"});
  command.Runs([options] { return ExplainAll(*options); });
}

}  // namespace keplo::cli
