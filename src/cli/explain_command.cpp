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
#include "signal/stage_text.h"
#include "station/press_words.h"
#include "typed_command.h"

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
  bool AllLight = false, Cut = false;
  std::string Raw;    // what the raw commands make of it; empty without any
  std::string Alike;  // of two of them that it could be, a sentence; mostly empty
  std::string Reading, KnownAs, Advice;
  bool HasCode = false;
};

std::string UsText(double samples, const SignalState& state) {
  return std::to_string(std::lround(samples * state.SampleTime)) + " us";
}

/// Whether the numbers of a reading tell its kind and base time.
bool TellsTiming(const MonitorReading& reading) {
  return reading.Ended > Stage::NoTiming && reading.Ended != Stage::Raw;
}

/// What the reading measured before it ended.
std::string Numbers(const SignalState& state, const MonitorReading& reading) {
  std::string text;
  if (TellsTiming(reading)) {
    text = "; " + std::string(ProtoKindName(state.Measured.ProtoKind)) + ", base time " +
           UsText(state.Measured.BaseT, state);
  }
  if (!reading.Digits.empty()) {
    text += ", " + std::to_string(reading.Digits.size()) + " digits " + reading.Digits;
  }
  return text;
}

/// Why there is no base time: the one reason of those that the stage has.
std::string WhyNoTiming(const SignalState& state) {
  const CommonLengths common = CommonLengthsOf(state.Measured);
  std::string why;
  if (common.Mark == 0 || common.Space == 0) {
    why = std::string(common.Mark == 0 ? "no mark" : "no space") + " is between " + UsText(4, state) +
          " and " + UsText(91, state) + " long";
  } else {
    why = "the commonest mark is " + UsText(common.Mark, state) + ", the commonest space " +
          UsText(common.Space, state) + ": more than " + UsText(5, state) + " apart, so that one of them is" +
          " the longer length of its digits";
  }
  return std::string(StageName(Stage::NoTiming)) + " (" + why + ")";
}

std::string Counted(int count, std::string_view what) {
  return std::to_string(count) + " " + std::string(what) + (count == 1 ? "" : "s");
}

/// Where digits differ, as text.
std::string PlacesText(const std::vector<std::size_t>& places) {
  constexpr std::size_t kMost = 6;
  std::string text;
  for (std::size_t i = 0; i < std::min(places.size(), kMost); ++i) {
    text += (i == 0 ? (places.size() == 1 ? "digit " : "digits ") : ", ") + std::to_string(places[i]);
  }
  if (places.size() > kMost) text += " and " + std::to_string(places.size() - kMost) + " more";
  return text;
}

std::string LengthsText(std::size_t number, std::string_view what) {
  if (number == 0) return "some " + std::string(what) + "s stand between two lengths";
  return "its " + std::string(what) + "s have " + Counted(static_cast<int>(number), "length");
}

/// The rule by which the second look ended without a code that is sure.
/// @param hasSpaces whether there is more than one mark
std::string RuleOf(const FramesHeard& heard, bool hasSpaces) {
  if (heard.Proven == RobustReading::Proof::Sure) return "";
  if (heard.TooFine) return "so short a base time is left to the first analysis";
  if (heard.Frames == 0 && heard.Others == 0) return "no line code fits";
  if (!hasSpaces) return "no line code fits one mark";
  if (heard.Frames == 0) {
    return "no line code fits the longest piece: " + LengthsText(heard.MarkLengths, "mark") + ", " +
           LengthsText(heard.SpaceLengths, "space");
  }
  if (heard.Doubt == robust::FrameDoubt::OddLength)
    return "one of its lengths is further off than the others";
  if (heard.Doubt == robust::FrameDoubt::BaseTime) return "no remote sends such a code with this base time";
  if (heard.Doubt == robust::FrameDoubt::Interference)
    return "interference within the only frame may have changed a digit";
  if (heard.Doubt == robust::FrameDoubt::OneDigit) return "it is one digit off what its protocol sends";
  if (heard.Doubt == robust::FrameDoubt::FewDigits && heard.Others == 0)
    return "it has a digit or two less than common protocols have, so that the code must be learned";
  if (heard.Frames == 1 && heard.Others == 0) return "one frame alone proves too little";
  if (heard.Proven == RobustReading::Proof::Single) return "the frames prove too little";
  if (heard.Alike < heard.Frames) {
    return "the frames differ in " + (heard.Differ.empty() ? "their lengths" : PlacesText(heard.Differ));
  }
  return heard.Others > 0 ? "the other pieces tell of more than these frames"
                          : "the digits are of one kind, or fewer than such a protocol has";
}

/// What the second look went by, with those of its numbers that the reading has not told.
std::string FramesText(SignalState& state, const MonitorReading& reading) {
  const FramesHeard heard = state.Second.Heard();
  std::string text;
  const auto add = [&](const std::string& part) {
    if (!part.empty()) text += (text.empty() ? "; " : ", ") + part;
  };
  if (!heard.TooFine) add(Counted(heard.Frames, "whole frame"));
  if (heard.Frames > 0 && !TellsTiming(reading)) add(std::string(ProtoKindName(heard.ProtoKind)));
  if (heard.BaseT > 0 && !TellsTiming(reading)) add("base time " + UsText(heard.BaseT, state));
  if (heard.Frames > 1) add(std::to_string(heard.Alike) + " of them alike");
  if (heard.Others > 0) add(Counted(heard.Others, "other piece"));
  add(RuleOf(heard, HeardIn(state).Runs.size() > 1));
  return text;
}

Attempt Try(const Press& press, const LineOptions& line, Analysis analysis, SignalState& state) {
  state = {};
  Attempt attempt{ReadAsMonitor(press, line, analysis, state), {}};
  const bool noTiming = attempt.Reading.Ended == Stage::NoTiming;
  attempt.Text = (noTiming ? WhyNoTiming(state) : DescribeStage(attempt.Reading.Ended)) +
                 Numbers(state, attempt.Reading);
  const bool wasRead = attempt.Reading.Ended > Stage::Short;
  if (analysis == Analysis::Second && wasRead) attempt.Text += FramesText(state, attempt.Reading);
  return attempt;
}

std::string NameOf(const OpenedConfig* config, const MonitorReading& reading) {
  if (config == nullptr || !reading.HasCode()) return {};
  const auto found =
      FindCommand(config->Text(), reading.Digits, /*limit=*/0, reading.ReadBy.value_or(Analysis::Second));
  return found ? found->Protocol + "&" + found->Command : "";
}

/// Whether the signal was on from the first sample to the last.
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
    return found ? found->Protocol + "&" + found->Command : "G" + std::string(digits);
  };
  if (!match.Alone && reading.Ended == Stage::Raw)
    return nameOf(reading.Digits) + " fits, and behind it begins another press";
  if (match.Digits.empty()) return "none of " + std::to_string(index.Size()) + " fits";
  const std::string fits = nameOf(match.Digits) + " fits";
  return match.Alone ? fits : fits + ", and " + nameOf(match.Other) + " nearly as well: none is taken";
}

std::string AdviceOn(const Explanation& press, const MonitorReading& reading, Analysis analysis, bool isClean,
                     const std::string& appPath) {
  const std::string learn = TypedCommand("learn FILE --name 'SECTION&NAME'", appPath);
  if (press.AllLight) {
    return "The line is lit from beginning to end. If nothing lights it, the receiver rests at the other "
           "level: swap the receiver kind with " +
           TypedCommand("settings ITYPE NUMBER", appPath);
  }
  if (reading.HasCode()) return press.KnownAs.empty() ? "Learn it: " + learn : "";
  if (!press.Alike.empty())
    return "It " + press.Alike + ": " + TypedCommand("forget 'SECTION&NAME'", appPath);
  const bool isAlone = !reading.Digits.empty() && reading.Ended == Stage::Doubtful;
  if (isClean && !isAlone && analysis == Analysis::Second) {
    return "The lengths are clean and can be stored as a raw command: " + learn;
  }
  if (analysis == Analysis::First && (isClean || press.Second.Reading.HasCode())) {
    return "The second look can " +
           std::string(press.Second.Reading.HasCode() ? "read it" : "learn its lengths") + ": " +
           TypedCommand("settings ANALYSIS 1", appPath);
  }
  return WhatToDo(reading.Ended, appPath);
}

Explanation Explain(const Press& press, const PressOptions& options, Analysis analysis,
                    const OpenedConfig* config) {
  Explanation told;
  SignalState state;
  told.First = Try(press, options.Line, Analysis::First, state);
  told.Second = Try(press, options.Line, Analysis::Second, state);
  HeardLengths heard = HeardIn(state);
  told.AllLight = IsAllLight(state);
  if (told.AllLight) heard.Runs = state.Runs.Read(state.Samples);
  told.Marks = GroupsOf(heard, 0);
  told.Spaces = GroupsOf(heard, 1);
  told.Cut = heard.Cut;
  for (std::size_t i = 0; i < heard.Runs.size(); ++i) told.Milliseconds += heard.Us(i) / 1000;
  MonitorReading reading = analysis == Analysis::First ? told.First.Reading : told.Second.Reading;
  if (config != nullptr) ProveByLearning(config->Mod.Store, reading);
  if (analysis == Analysis::Second && config != nullptr) {
    AskRawCommands(config->Mod.Store, state, reading);
    told.Raw = RawText(*config, state, reading);
    told.Alike = AlikeRawText(config->Mod.Store, state);
  }
  told.HasCode = reading.HasCode();
  told.KnownAs = NameOf(config, reading);
  told.Reading = told.HasCode ? "code G" + reading.Digits : "no code: " + DescribeStage(reading.Ended);
  told.Advice = AdviceOn(told, reading, analysis, FindLevels(heard).has_value(), options.AppPath);
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
  if (!press.Raw.empty()) lines.push_back("raw commands: " + press.Raw);
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
    const Explanation told = Explain(press, options, analysis, config.get());
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
