#include "signal/monitor_road.h"

#include <array>
#include <cstddef>
#include <utility>

#include "signal/decode.h"
#include "signal/sample_bits.h"

namespace keplo {

namespace {

constexpr std::size_t kSilenceKept = 100;     // bytes behind the last sample of the signal
constexpr std::size_t kShortestCapture = 50;  // bytes

bool LengthFits(std::size_t digits, std::int16_t kind) {
  switch (kind) {
    case kNec:
      return digits >= 13;
    case kSony:
      return digits == 12;
    case kRc5:
      return digits == 14;
    default:
      return true;
  }
}

}  // namespace

std::string_view StageName(Stage stage) {
  static constexpr std::array<std::string_view, 8> kNames = {
      "empty", "short", "no-timing", "ends-in-mark", "no-frame", "unknown", "length", "code"};
  return kNames.at(static_cast<std::size_t>(stage));
}

Stage TrimCapture(std::string& capture) {
  const std::size_t last = capture.find_last_not_of('\0');
  if (last == std::string::npos) return Stage::Empty;
  const std::size_t kept = last + 1 + kSilenceKept;
  if (capture.size() > kept) capture.resize(kept);
  return capture.size() < kShortestCapture ? Stage::Short : Stage::Code;
}

MonitorReading ReadTrimmedCapture(SignalState& state) {
  SamplesToBits(state.RawCapture, state.SampleBits);
  if (!AnalyseTiming(state.SampleBits, state.Measured)) return MonitorReading(Stage::NoTiming);

  const std::optional<std::string> symbols = WalkRuns(state.SampleBits, state.Measured.BaseT);
  if (!symbols) return MonitorReading(Stage::EndsInMark);
  const std::optional<std::string_view> frame = IsolateFrame(*symbols);
  if (!frame) return MonitorReading(Stage::NoFrame);
  const std::int16_t kind = state.Measured.ProtoKind;
  if (kind == kUnknown) return MonitorReading(Stage::Unknown);

  MonitorReading reading;
  reading.Digits = DecodeCode(*frame, kind);
  reading.Ended = LengthFits(reading.Digits.size(), kind) ? Stage::Code : Stage::Length;
  return reading;
}

MonitorReading ReadCapture(std::string_view capture, SignalState& state) {
  state.RawCapture = capture;
  const Stage trimmed = TrimCapture(state.RawCapture);
  return trimmed == Stage::Code ? ReadTrimmedCapture(state) : MonitorReading(trimmed);
}

}  // namespace keplo
