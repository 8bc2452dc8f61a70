#include <algorithm>
#include <cmath>
#include <memory>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <vector>

#include "cli/commands.h"
#include "cli/press_table.h"
#include "config/lookup.h"
#include "config/raw_lookup.h"
#include "signal/raw/raw_levels.h"
#include "station/stage_text.h"

namespace keplo::cli {

namespace {

/// Lengths that are nearly equal.
struct LengthGroup {
  double Us = 0;  // mean
  std::size_t Count = 0;
};

constexpr double kLongestMark = 50;     // milliseconds; no remote lights longer
constexpr std::size_t kMostGroups = 6;  // more are noise, and tell no more

/// The lengths of the marks or of the spaces of a signal, the shortest first.
/// @param first 0 for the marks, 1 for the spaces
std::vector<LengthGroup> GroupsOf(const HeardLengths& heard, std::size_t first) {
  constexpr double kPart = 1.25, kLeast = 100;  // between neighbours; microseconds
  std::vector<double> lengths;
  for (std::size_t i = first; i < heard.Runs.size(); i += 2) lengths.push_back(heard.Us(i));
  std::sort(lengths.begin(), lengths.end());
  std::vector<LengthGroup> groups;
  double last = 0;
  for (const double length : lengths) {
    if (groups.empty() || length > std::max(last * kPart, last + kLeast)) groups.emplace_back();
    LengthGroup& group = groups.back();
    group.Us += (length - group.Us) / static_cast<double>(++group.Count);
    last = length;
  }
  return groups;
}

std::string GroupsText(const std::vector<LengthGroup>& groups) {
  std::string text;
  for (std::size_t i = 0; i < std::min(groups.size(), kMostGroups); ++i) {
    text += (i == 0 ? "" : ", ") + std::to_string(groups[i].Count) + " of ";
    text += std::to_string(std::lround(groups[i].Us)) + " us";
  }
  if (groups.size() > kMostGroups) {
    text += " and " + std::to_string(groups.size() - kMostGroups) + " other lengths";
  }
  return text.empty() ? "none" : text;
}

/// What one way of reading makes of a capture.
struct Attempt {
  MonitorReading Reading;
  std::string Text;
};

/// Everything that there is to tell of a press.
struct Explanation {
  Attempt First, Second;
  std::vector<LengthGroup> Marks, Spaces;
  double Milliseconds = 0;
  bool AllLight = false, Cut = false, CouldBeRaw = false;
  std::string Reading, KnownAs, Advice;
  bool HasCode = false;
};

std::string Numbers(const SignalState& state, const MonitorReading& reading) {
  std::string text;
  if (reading.Ended > Stage::NoTiming && reading.Ended != Stage::Raw) {
    text = "; " + std::string(ProtoKindName(state.Measured.ProtoKind)) + ", base time " +
           std::to_string(std::lround(state.Measured.BaseT * state.SampleTime)) + " us";
  }
  if (!reading.Digits.empty()) {
    text += ", " + std::to_string(reading.Digits.size()) + " digits " + reading.Digits;
  }
  return text;
}

Attempt Try(const Press& press, const LineOptions& line, Analysis analysis, SignalState& state) {
  state = {};
  Attempt attempt{ReadAsMonitor(press, line, analysis, state), {}};
  attempt.Text = DescribeStage(attempt.Reading.Ended) + Numbers(state, attempt.Reading);
  return attempt;
}

std::string NameOf(const OpenedConfig* config, const MonitorReading& reading) {
  if (config == nullptr || !reading.HasCode()) return {};
  const auto found =
      FindCommand(config->Text(), reading.Digits, /*limit=*/0, reading.ReadBy.value_or(Analysis::Second));
  return found ? found->Protocol + "&" + found->Command : "";
}

std::string AdviceOn(const Explanation& press, Stage ended) {
  if (press.AllLight) {
    return "The line is lit from beginning to end. If nothing lights it, the receiver rests at the other "
           "level: "
           "swap the receiver kind with keplo settings ITYPE.";
  }
  if (ended == Stage::Code || ended == Stage::Raw) {
    return press.KnownAs.empty() ? "Learn it: keplo learn FILE --name SECTION&NAME." : "";
  }
  if (press.CouldBeRaw) {
    return "The lengths are clean: keplo learn FILE --name SECTION&NAME stores them as a raw command.";
  }
  return WhatToDo(ended);
}

Explanation Explain(const Press& press, const LineOptions& line, Analysis analysis,
                    const OpenedConfig* config) {
  Explanation told;
  SignalState state;
  told.First = Try(press, line, Analysis::First, state);
  told.Second = Try(press, line, Analysis::Second, state);
  const HeardLengths heard = HeardIn(state);
  told.Marks = GroupsOf(heard, 0);
  told.Spaces = GroupsOf(heard, 1);
  told.Cut = heard.Cut;
  for (std::size_t i = 0; i < heard.Runs.size(); ++i) told.Milliseconds += heard.Us(i) / 1000;
  told.AllLight = heard.Runs.size() == 1 && told.Milliseconds >= kLongestMark;
  MonitorReading reading = analysis == Analysis::First ? told.First.Reading : told.Second.Reading;
  if (analysis == Analysis::Second && config != nullptr) AskRawCommands(config->Mod.Store, state, reading);
  told.CouldBeRaw = !reading.HasCode() && FindLevels(heard).has_value();
  told.HasCode = reading.HasCode();
  told.KnownAs = NameOf(config, reading);
  told.Reading = told.HasCode ? "code G" + reading.Digits : "no code: " + DescribeStage(reading.Ended);
  told.Advice = AdviceOn(told, reading.Ended);
  return told;
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
  if (!press.Advice.empty()) lines.push_back("to do: " + press.Advice);
  return lines;
}

nlohmann::ordered_json JsonOf(const std::vector<LengthGroup>& groups) {
  auto json = nlohmann::ordered_json::array();
  for (const LengthGroup& group : groups)
    json.push_back({{"us", std::lround(group.Us)}, {"count", group.Count}});
  return json;
}

nlohmann::ordered_json OrNull(const std::string& text) {
  return text.empty() ? nlohmann::ordered_json() : nlohmann::ordered_json(text);
}

void Describe(const Explanation& press, nlohmann::ordered_json& json) {
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
    const Explanation told = Explain(press, options.Line, analysis, config.get());
    if (json != nullptr) Describe(told, *json);
    const std::string name = told.KnownAs.empty() ? "" : ", which is " + told.KnownAs;
    return PressRow{told.HasCode, told.Reading + name, "", DetailsOf(told)};
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
