#include "signal/monitored_press.h"

#include <array>
#include <cstddef>
#include <utility>

#include "signal/decode.h"
#include "signal/sample_bits.h"
#include "signal/second_look/second_look.h"

namespace keplo {

namespace {

constexpr std::size_t kMonitoredSilenceKept = 100;  // bytes after the last sample of the signal

bool LengthFits(std::size_t digits, std::int16_t kind, Analysis analysis) {
  switch (kind) {
    case kNec:
      return digits >= 13;
    case kSony:
      return analysis == Analysis::First ? digits == 12 : digits >= 12;
    case kRc5:
      return digits == 14;
    default:
      return true;
  }
}

/// The code of a frame that stands between two marks.
MonitorReading ReadFrame(std::string_view symbols, std::int16_t kind, Analysis analysis) {
  const std::optional<std::string_view> frame = IsolateFrame(symbols);
  if (!frame) return MonitorReading(Stage::NoFrame);
  if (kind == kUnknown) return MonitorReading(Stage::Unknown);

  MonitorReading reading;
  reading.Digits = DecodeCode(*frame, kind);
  reading.Ended = LengthFits(reading.Digits.size(), kind, analysis) ? Stage::Code : Stage::Length;
  reading.ReadBy = analysis;
  return reading;
}

MonitorReading ReadPlainly(SignalState& state) {
  if (!AnalyseTiming(state.SampleBits, state.Measured)) return MonitorReading(Stage::NoTiming);
  const std::optional<std::string> symbols = WalkRuns(state.SampleBits, state.Measured.BaseT);
  if (!symbols) return MonitorReading(Stage::EndsInMark);
  return ReadFrame(*symbols, state.Measured.ProtoKind, Analysis::First);
}

MonitorReading ReadFrameOf(const RobustReading& look, Timing& measured) {
  measured.BaseT = look.BaseT;
  measured.ProtoKind = look.ProtoKind;
  return ReadFrame(look.Frame, look.ProtoKind, Analysis::Second);
}

MonitorReading ReadWithSecondLook(SignalState& state) {
  const RobustReading look = ReadRobustly(state.SampleBits);
  if (look.Proven == RobustReading::Proof::Sure) return ReadFrameOf(look, state.Measured);
  if (look.Proven == RobustReading::Proof::Single) {
    MonitorReading lone = ReadFrameOf(look, state.Measured);
    if (lone.Ended == Stage::Code) lone.Ended = Stage::Doubtful;
    return lone;
  }
  MonitorReading reading = ReadPlainly(state);
  const bool refused = look.Proven == RobustReading::Proof::Refused;
  return refused && reading.ReadBy ? MonitorReading(Stage::Doubtful) : reading;
}

}  // namespace

std::string_view StageName(Stage stage) {
  static constexpr std::array<std::string_view, 9> kNames = {
      "empty", "short", "doubtful", "no-timing", "ends-in-mark", "no-frame", "unknown", "length", "code"};
  return kNames.at(static_cast<std::size_t>(stage));
}

Stage TrimCapture(std::string& capture) {
  const std::size_t last = capture.find_last_not_of('\0');
  if (last == std::string::npos) return Stage::Empty;
  const std::size_t kept = last + 1 + kMonitoredSilenceKept;
  if (capture.size() > kept) capture.resize(kept);
  return capture.size() < kShortestCapture ? Stage::Short : Stage::Code;
}

MonitorReading ReadTrimmedCapture(SignalState& state, Analysis analysis) {
  SamplesToBits(state.RawCapture, state.SampleBits);
  return analysis == Analysis::First ? ReadPlainly(state) : ReadWithSecondLook(state);
}

MonitorReading ReadCapture(std::string_view capture, SignalState& state, Analysis analysis) {
  state.RawCapture = capture;
  const Stage trimmed = TrimCapture(state.RawCapture);
  return trimmed == Stage::Code ? ReadTrimmedCapture(state, analysis) : MonitorReading(trimmed);
}

}  // namespace keplo
