#include "signal/monitored_press.h"

#include <array>
#include <cstddef>

#include "signal/capture_trim.h"
#include "signal/decode.h"
#include "signal/sample_bits.h"

namespace keplo {

namespace {

constexpr std::size_t kMonitoredSilenceKept = 100;  // bytes after the last sample of the signal

/// Whether the digits that were read are a code.
void Judge(std::int16_t kind, Analysis analysis, MonitorReading& reading) {
  reading.Ended = IsCodeLength(reading.Digits.size(), kind, analysis) ? Stage::Code : Stage::Length;
  reading.ReadBy = analysis;
}

/// The code of a frame.
void ReadFrame(std::string_view symbols, std::int16_t kind, Analysis analysis, MonitorReading& reading) {
  if (kind == kUnknown) return reading.EndAt(Stage::Unknown);
  DecodeCode(symbols, kind, reading.Digits);
  Judge(kind, analysis, reading);
  reading.Toggle = ToggleOf(symbols, kind);
}

void ReadPlainly(SignalState& state, RunSpan runs, MonitorReading& reading) {
  if (!AnalyseTiming(runs, state.Measured)) return reading.EndAt(Stage::NoTiming);
  if (EndsInMark(runs)) return reading.EndAt(Stage::EndsInMark);
  if (!WalkFirstFrame(runs, state.Measured.BaseT, state.RunSymbols)) return reading.EndAt(Stage::NoFrame);
  ReadFrame(state.RunSymbols, state.Measured.ProtoKind, Analysis::First, reading);
}

void ReadFrameOf(const RobustReading& look, Timing& measured, MonitorReading& reading) {
  measured.BaseT = look.BaseT;
  measured.ProtoKind = look.ProtoKind;
  look.Decode(reading.Digits);
  Judge(look.ProtoKind, Analysis::Second, reading);
  reading.Toggle = ToggleOf(look.Frame, look.ProtoKind);
  reading.Dittos = look.Dittos;
  reading.Leader = look.Leader;
  reading.SecondTap = look.FlipsAt;
  if (look.FlipsAt > 0 && reading.Toggle) reading.SecondToggle = !*reading.Toggle;
}

/// Ends the reading of a signal that neither analysis could read.
void EndUnread(const RobustReading& look, Timing& measured, MonitorReading& reading) {
  if (look.Proven == RobustReading::Proof::Refused) return reading.EndAt(Stage::Doubtful);
  if (TakeUnread(look, reading.Ended == Stage::NoTiming, measured)) reading.EndAt(Stage::Unknown);
}

void ReadWithSecondLook(SignalState& state, RunSpan runs, MonitorReading& reading) {
  const RobustReading& look = state.Second.Read(state.Samples, runs, state.SampleTime);
  if (look.Proven == RobustReading::Proof::Sure) return ReadFrameOf(look, state.Measured, reading);
  if (look.Proven == RobustReading::Proof::Single) {
    ReadFrameOf(look, state.Measured, reading);
    if (reading.Ended == Stage::Code) reading.Ended = Stage::Doubtful;
    return;
  }
  const bool refused = look.Proven == RobustReading::Proof::Refused;
  ReadPlainly(state, runs, reading);
  const bool believed = !refused && CouldBeDigitsOf(look, reading.Digits, state.Measured.ProtoKind);
  if (reading.ReadBy && !believed) return reading.EndAt(Stage::Doubtful);
  if (!reading.ReadBy && look.BaseT > 0) EndUnread(look, state.Measured, reading);
}

}  // namespace

bool IsCodeLength(std::size_t digits, std::int16_t kind, Analysis analysis) {
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

std::string_view StageName(Stage stage) {
  static constexpr std::array<std::string_view, kStages> kNames = {
      "empty",    "short",   "doubtful", "no-timing", "ends-in-mark",
      "no-frame", "unknown", "length",   "code",      "raw"};
  return kNames.at(static_cast<std::size_t>(stage));
}

Stage TrimCapture(std::string& capture) {
  const std::size_t signal = SignalBytes(capture);
  if (signal == 0) return Stage::Empty;
  const std::size_t kept = signal + kMonitoredSilenceKept;
  if (capture.size() > kept) capture.resize(kept);
  return capture.size() < kShortestCapture ? Stage::Short : Stage::Code;
}

void ReadTrimmedCapture(SignalState& state, Analysis analysis, MonitorReading& reading) {
  reading.EndAt(Stage::Empty);
  state.Samples.Read(state.RawCapture);
  const RunSpan runs = state.Runs.Read(state.Samples);
  if (analysis == Analysis::First) {
    ReadPlainly(state, runs, reading);
  } else {
    ReadWithSecondLook(state, runs, reading);
  }
}

void ReadCapture(std::string_view capture, SignalState& state, Analysis analysis, MonitorReading& reading) {
  state.RawCapture = capture;
  const Stage trimmed = TrimCapture(state.RawCapture);
  if (trimmed != Stage::Code) return reading.EndAt(trimmed);
  ReadTrimmedCapture(state, analysis, reading);
}

MonitorReading ReadCapture(std::string_view capture, SignalState& state, Analysis analysis) {
  MonitorReading reading;
  ReadCapture(capture, state, analysis, reading);
  return reading;
}

bool IsReadByMonitor(std::string_view recording, std::string_view code, double sampleTime) {
  SignalState state;
  state.SampleTime = sampleTime;
  const MonitorReading reading =
      ReadCapture(recording.substr(0, kMonitorCaptureBytes), state, Analysis::Second);
  return reading.Digits == code && (reading.Ended != Stage::Length || reading.ReadBy == Analysis::Second);
}

}  // namespace keplo
