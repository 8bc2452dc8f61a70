#include "cli/analysis_attempt.h"

#include <algorithm>
#include <cmath>
#include <string_view>
#include <vector>

#include "cli/press_table.h"
#include "config/raw_lookup.h"
#include "program/counted.h"
#include "signal/stage_text.h"

namespace keplo::cli {

namespace {

std::string UsText(double samples, const SignalState& state) {
  return std::to_string(std::lround(samples * state.SampleTime)) + " us";
}

/// Whether the text of a reading includes its kind and base time.
bool HasTiming(const MonitorReading& reading) {
  return reading.Ended > Stage::NoTiming && reading.Ended != Stage::Raw;
}

/// What the analysis measured before it ended.
std::string NumbersText(const SignalState& state, const MonitorReading& reading) {
  std::string text;
  if (HasTiming(reading)) {
    text = "; " + std::string(ProtoKindName(state.Measured.ProtoKind)) + ", base time " +
           UsText(state.Measured.BaseT, state);
  }
  if (!reading.Digits.empty()) {
    text += ", " + Counted(reading.Digits.size(), "digit") + ' ' + reading.Digits;
  }
  return text;
}

/// Describes Stage::NoTiming with the reason that applies.
std::string NoTimingText(const SignalState& state) {
  const CommonLengths common = CommonLengthsOf(state.Measured);
  std::string reason;
  if (common.Mark == 0 || common.Space == 0) {
    reason = std::string(common.Mark == 0 ? "no mark" : "no space") + " is between " + UsText(4, state) +
             " and " + UsText(91, state) + " long";
  } else {
    reason = "the commonest mark is " + UsText(common.Mark, state) + ", the commonest space " +
             UsText(common.Space, state) + ": more than " + UsText(5, state) +
             " apart, so that one of them is" + " the longer length of its digits";
  }
  return std::string(StageName(Stage::NoTiming)) + " (" + reason + ")";
}

/// "digit 3", "digits 3, 5".
std::string DigitsText(const std::vector<std::size_t>& positions) {
  constexpr std::size_t kMost = 6;
  std::string text;
  for (std::size_t i = 0; i < std::min(positions.size(), kMost); ++i) {
    text += (i == 0 ? (positions.size() == 1 ? "digit " : "digits ") : ", ") + std::to_string(positions[i]);
  }
  if (positions.size() > kMost) text += " and " + std::to_string(positions.size() - kMost) + " more";
  return text;
}

std::string LengthsText(std::size_t number, std::string_view what) {
  if (number == 0) return "some " + std::string(what) + "s stand between two lengths";
  return "its " + std::string(what) + "s have " + Counted(number, "length");
}

/// Why the second look has no certain code; empty if it has one.
/// @param hasSpaces whether there is more than one mark
std::string DoubtText(const FramesHeard& heard, bool hasSpaces) {
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
    return "the frames differ in " + (heard.Differ.empty() ? "their lengths" : DigitsText(heard.Differ));
  }
  return heard.Others > 0 ? "the other pieces tell of more than these frames"
                          : "the digits are of one kind, or fewer than such a protocol has";
}

/// What the second look found, without the numbers already given by NumbersText.
std::string FramesText(SignalState& state, const MonitorReading& reading) {
  const FramesHeard heard = state.Second.Heard();
  std::string text;
  const auto add = [&](const std::string& part) {
    if (!part.empty()) text += (text.empty() ? "; " : ", ") + part;
  };
  if (!heard.TooFine) add(Counted(heard.Frames, "whole frame"));
  if (heard.Frames > 0 && !HasTiming(reading)) add(std::string(ProtoKindName(heard.ProtoKind)));
  if (heard.BaseT > 0 && !HasTiming(reading)) add("base time " + UsText(heard.BaseT, state));
  if (heard.Alike > 1) add(std::to_string(heard.Alike) + " of them alike");
  if (heard.Others > 0) add(Counted(heard.Others, "other piece"));
  add(DoubtText(heard, HeardIn(state).Runs.size() > 1));
  return text;
}

}  // namespace

Attempt TryAnalysis(const Press& press, const LineOptions& line, Analysis analysis, SignalState& state) {
  state = {};
  Attempt attempt{ReadAsMonitor(press, line, analysis, state), {}};
  const bool noTiming = attempt.Reading.Ended == Stage::NoTiming;
  attempt.Text = (noTiming ? NoTimingText(state) : DescribeStage(attempt.Reading.Ended)) +
                 NumbersText(state, attempt.Reading);
  const bool wasRead = attempt.Reading.Ended > Stage::Short;
  if (analysis == Analysis::Second && wasRead) attempt.Text += FramesText(state, attempt.Reading);
  return attempt;
}

}  // namespace keplo::cli
