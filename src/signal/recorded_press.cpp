#include "signal/recorded_press.h"

#include <utility>

#include "signal/decode.h"
#include "signal/decode_frames.h"
#include "signal/run_symbols.h"
#include "signal/sample_bits.h"
#include "signal/second_look/second_look.h"

namespace keplo {

namespace {

constexpr std::size_t kRecordedSilenceKept = 30;  // bytes after the last sample of the signal
constexpr std::size_t kClosingSilence = 100;      // samples; a longer space at the end closes the last frame
constexpr std::size_t kShortestCommand = 7;       // digits of a frame that stands alone

/// The symbols from the first mark on. An RC5 frame has no leader; the silence before it is its mark.
std::string FromFirstMark(std::string symbols, std::int16_t kind) {
  if (kind == kRc5) symbols.insert(symbols.begin(), 'g');
  const std::size_t mark = symbols.find_first_of(kMarks);
  if (mark != std::string::npos) symbols.erase(0, mark);
  return symbols;
}

/// @param symbols those of the recording from its first mark on
void ReadFrames(RecordReading& reading, std::string_view symbols) {
  reading.Decoded = DecodeFrames(symbols, reading.ProtoKind);
  FramePair frames = CutFrames(reading.Decoded);
  if (reading.ProtoKind == kNec && frames.FirstEnded) reading.SyncType = frames.DoubleMarkBehind ? 2 : 1;
  reading.FirstFrame = std::move(frames.First);
  reading.SecondFrame = std::move(frames.Second);
  reading.Repeats = reading.FirstFrame == reading.SecondFrame;
  reading.Code = reading.FirstFrame;
}

void ExplainCode(RecordReading& reading) {
  if (reading.ProtoKind == kRc5) {
    reading.SyncType = 0;
    if (reading.Code.size() > kToggleBitOffset) {
      reading.Toggle = std::exchange(reading.Code[kToggleBitOffset], '0');
    }
  }
  if (reading.ProtoKind == kSony) reading.SyncType = 2;
  reading.Values = ValuesOfCode(reading.Code, reading.ProtoKind, reading.ReadBy);
}

void ReadCode(RecordReading& reading, std::string_view symbols) {
  ReadFrames(reading, symbols);
  const bool piece = !reading.Repeats && reading.Code.size() < kShortestCommand;
  reading.Ended = piece ? RecordStage::Fragment : RecordStage::Code;
  if (!piece) ExplainCode(reading);
}

RecordReading ReadPlainly(std::string_view samples, Timing& measured) {
  if (!AnalyseTiming(samples, measured)) return RecordReading(RecordStage::NoTiming);
  RecordReading reading(RecordStage::Unknown);
  reading.BaseT = measured.BaseT;
  reading.ProtoKind = measured.ProtoKind;
  if (reading.ProtoKind == kUnknown) return reading;

  reading.Runs = WalkRecording(samples, reading.BaseT);
  ReadCode(reading, FromFirstMark(reading.Runs.Symbols, reading.ProtoKind));
  return reading;
}

RecordReading ReadWithSecondLook(std::string_view samples, Timing& measured) {
  RobustReading look = ReadRobustly(samples);
  if (!look.HasFrames()) return ReadPlainly(samples, measured);
  measured.BaseT = look.BaseT;
  measured.ProtoKind = look.ProtoKind;
  RecordReading reading(RecordStage::Unknown);
  reading.ReadBy = Analysis::Second;
  reading.BaseT = look.BaseT;
  reading.ProtoKind = look.ProtoKind;
  reading.Runs = WalkRecording(samples, look.BaseT);
  reading.Runs.Symbols = std::move(look.Symbols);
  ReadCode(reading, reading.Runs.Symbols);
  return reading;
}

}  // namespace

RecordedRuns WalkRecording(std::string_view samples, int baseT) {
  RecordedRuns runs;
  std::size_t offset = 0;
  while (true) {
    const std::size_t ones = RunLength(samples, offset, '1');
    offset += ones;
    if (offset >= samples.size()) return runs;
    runs.Ones.push_back(static_cast<int>(ones));
    AppendRun(runs.Symbols, RunUnits(runs.Ones.back(), baseT), '1', 'G');

    const std::size_t zeros = RunLength(samples, offset, '0');
    offset += zeros;
    if (offset >= samples.size()) {
      if (zeros > kClosingSilence) runs.Symbols += 'g';
      return runs;
    }
    runs.Zeros.push_back(static_cast<int>(zeros));
    AppendRun(runs.Symbols, RunUnits(runs.Zeros.back(), baseT), '0', 'g');
  }
}

std::string RunLengthsText(const std::vector<int>& lengths) {
  std::string text;
  for (const int length : lengths) text.append(1, '-').append(std::to_string(length));
  return text;
}

RecordStage TrimRecording(std::string& capture) {
  const std::size_t last = capture.find_last_not_of('\0');
  if (last == std::string::npos) return RecordStage::Empty;
  const std::size_t kept = last + 1 + kRecordedSilenceKept;
  if (capture.size() <= kept) return RecordStage::Code;
  capture.resize(kept);
  return capture.size() < kShortestCapture ? RecordStage::Short : RecordStage::Code;
}

RecordReading ReadRecordedSamples(std::string_view samples, Timing& measured, Analysis analysis) {
  return analysis == Analysis::First ? ReadPlainly(samples, measured) : ReadWithSecondLook(samples, measured);
}

RecordReading ReadRecordedCapture(std::string_view capture, SignalState& state, Analysis analysis) {
  state.RawCapture = capture;
  const RecordStage trimmed = TrimRecording(state.RawCapture);
  if (trimmed != RecordStage::Code) return RecordReading(trimmed);
  SamplesToBits(state.RawCapture, state.SampleBits);
  return ReadRecordedSamples(state.SampleBits, state.Measured, analysis);
}

}  // namespace keplo
