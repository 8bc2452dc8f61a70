#include "signal/recorded_press.h"

#include <algorithm>
#include <utility>

#include "signal/capture_trim.h"
#include "signal/decode.h"
#include "signal/decode_frames.h"
#include "signal/monitored_press.h"
#include "signal/rc6.h"
#include "signal/run_symbols.h"
#include "signal/sample_bits.h"
#include "signal/send_as.h"

namespace keplo {

namespace {

constexpr std::size_t kRecordedSilenceKept = 30;  // bytes after the last sample of the signal
constexpr int kClosingSilence = 100;              // samples; a longer space at the end closes the last frame
constexpr std::size_t kShortestCommand = 7;       // digits of a frame that stands alone

/// The symbols from the first mark on. An RC5 frame has no leader; the silence before it is its mark.
void CutToFirstMark(std::string& symbols, std::int16_t kind) {
  if (kind == kRc5) symbols.insert(symbols.begin(), 'g');
  const std::size_t mark = symbols.find_first_of(kMarks);
  if (mark != std::string::npos) symbols.erase(0, mark);
}

/// @param symbols those of the recording from its first mark on
void ReadFrames(RecordReading& reading, std::string_view symbols) {
  DecodeFrames(symbols, reading.ProtoKind, reading.Decoded);
  const FramePair frames = CutFrames(reading.Decoded);
  if (reading.ProtoKind == kNec && frames.FirstEnded) reading.SyncType = frames.DoubleMarkAfter ? 2 : 1;
  reading.FirstFrame = frames.First;
  reading.SecondFrame = frames.Second;
  reading.Repeats = frames.First == frames.Second;
  reading.Code = frames.First;
}

/// The toggle of the first frame, which is no part of an RC6 code.
void TakeRc6Toggle(RecordReading& reading, std::string_view symbols) {
  const std::size_t begin = std::min(symbols.find_first_not_of(kMarks), symbols.size());
  const std::size_t end = std::min(symbols.find_first_of(kMarks, begin), symbols.size());
  if (const auto frame = ReadRc6(symbols.substr(begin, end - begin))) reading.Toggle = frame->Toggle;
  reading.SyncType = 2;
  reading.SendAs = kSendAsRc6;
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

/// Two alternating frames are one command, which repeats if the first of them comes again.
void TakeTurns(const RobustReading& look, RecordReading& reading) {
  look.Decode(reading.Code);
  const bool fromSecond = !reading.Code.starts_with(DecodeCode(look.Frame, look.ProtoKind));
  reading.SendAs = SendInTurns(reading.Code.size() / 2, fromSecond);
  reading.Repeats = look.Proven == RobustReading::Proof::Sure;
  reading.Values.reset();
}

void TakeTiming(RecordReading& reading, Analysis analysis, std::int16_t baseT, std::int16_t kind) {
  reading.EndAt(RecordStage::Unknown);
  reading.ReadBy = analysis;
  reading.BaseT = baseT;
  reading.ProtoKind = kind;
}

/// @return false if there is nothing to read
bool MeasurePlainly(RunSpan runs, Timing& measured, RecordReading& reading) {
  if (!AnalyseTiming(runs, measured)) {
    reading.EndAt(RecordStage::NoTiming);
    return false;
  }
  TakeTiming(reading, Analysis::First, measured.BaseT, measured.ProtoKind);
  return reading.ProtoKind != kUnknown;
}

void ReadPlainly(SignalState& state, RunSpan runs, RecordReading& reading) {
  if (!MeasurePlainly(runs, state.Measured, reading)) return;
  WalkRecording(runs, reading.BaseT, reading.Runs);
  state.RunSymbols = reading.Runs.Symbols;
  CutToFirstMark(state.RunSymbols, reading.ProtoKind);
  ReadCode(reading, state.RunSymbols);
}

/// Digits of a signal that the second look refuses would be made up, so that only the base time is told.
void Doubt(RecordReading& reading) {
  const std::int16_t baseT = reading.BaseT;
  TakeTiming(reading, Analysis::Second, baseT, kUnknown);
  reading.IsDoubtful = true;
}

/// Ends the reading of a recording that neither analysis could read.
void EndUnread(const RobustReading& look, Timing& measured, RecordReading& reading) {
  if (reading.Ended == RecordStage::Code) return;
  if (!TakeUnread(look, reading.Ended == RecordStage::NoTiming, measured)) return;
  TakeTiming(reading, Analysis::Second, look.BaseT, kUnknown);
  reading.IsDoubtful = look.Proven != RobustReading::Proof::Unsure;
}

void ReadWithSecondLook(SignalState& state, RunSpan runs, RecordReading& reading) {
  const RobustReading& look = state.Second.Read(state.Samples, runs, state.SampleTime);
  if (look.Proven == RobustReading::Proof::Unsure) {
    ReadPlainly(state, runs, reading);
    const bool isRead = reading.Ended >= RecordStage::Fragment;
    if (isRead && !CouldBeDigitsOf(look, reading.Code, reading.ProtoKind)) Doubt(reading);
    return EndUnread(look, state.Measured, reading);
  }
  if (look.Proven == RobustReading::Proof::Refused || !look.HasFrames()) {
    if (MeasurePlainly(runs, state.Measured, reading)) Doubt(reading);
    return EndUnread(look, state.Measured, reading);
  }
  state.Measured.BaseT = look.BaseT;
  state.Measured.ProtoKind = look.ProtoKind;
  TakeTiming(reading, Analysis::Second, look.BaseT, look.ProtoKind);
  WalkRecording(runs, look.BaseT, reading.Runs);
  reading.Runs.Symbols = look.Symbols;
  ReadCode(reading, reading.Runs.Symbols);
  if (reading.ProtoKind == kRc6) TakeRc6Toggle(reading, reading.Runs.Symbols);
  if (!look.OtherFrame.empty()) TakeTurns(look, reading);
  // The monitor would not take such a code; its lengths can still be learned as a raw command.
  const bool isCode = IsCodeLength(reading.Code.size(), reading.ProtoKind, Analysis::Second);
  if (reading.Ended != RecordStage::Code || isCode) return;
  Doubt(reading);
  reading.HasOddLength = true;
}

}  // namespace

void RecordReading::EndAt(RecordStage stage) {
  Ended = stage;
  ReadBy = Analysis::First;
  BaseT = 0;
  ProtoKind = kUnknown;
  for (std::string* text : {&Runs.Symbols, &Decoded, &FirstFrame, &SecondFrame, &Code, &SendAs})
    text->clear();
  Runs.Ones.clear();
  Runs.Zeros.clear();
  IsDoubtful = false;
  HasOddLength = false;
  Repeats = false;
  SyncType.reset();
  Toggle.reset();
  Values.reset();
}

void WalkRecording(RunSpan runs, int baseT, RecordedRuns& walked) {
  const std::size_t whole = runs.empty() ? 0 : runs.size() - 1;
  walked.Ones.resize(whole - whole / 2);
  walked.Zeros.resize(whole / 2);
  SymbolWriter symbols(walked.Symbols, whole);
  // A write to characters may change any object, so the compiler would load these pointers anew for each run.
  int* const ones = walked.Ones.data();
  int* const zeros = walked.Zeros.data();
  for (std::size_t pair = 0; pair < whole / 2; ++pair) {
    const int mark = ones[pair] = runs[2 * pair];
    symbols.Mark(mark, baseT);
    const int space = zeros[pair] = runs[2 * pair + 1];
    symbols.Space(space, baseT);
  }
  if (whole % 2 != 0) symbols.Mark(ones[whole / 2] = runs[whole - 1], baseT);
  if (!runs.empty() && !EndsInMark(runs) && runs.back() > kClosingSilence) symbols.Border('g');
}

std::string RunLengthsText(const std::vector<int>& lengths) {
  std::string text;
  for (const int length : lengths) text.append(1, '-').append(std::to_string(length));
  return text;
}

RecordStage TrimRecording(std::string& capture) {
  const std::size_t signal = SignalBytes(capture);
  if (signal == 0) return RecordStage::Empty;
  const std::size_t kept = signal + kRecordedSilenceKept;
  if (capture.size() <= kept) return RecordStage::Code;
  capture.resize(kept);
  return capture.size() < kShortestCapture ? RecordStage::Short : RecordStage::Code;
}

void ReadTrimmedRecording(SignalState& state, Analysis analysis, RecordReading& reading) {
  state.Samples.Read(state.RawCapture);
  const RunSpan runs = state.Runs.Read(state.Samples);
  if (analysis == Analysis::First) {
    ReadPlainly(state, runs, reading);
  } else {
    ReadWithSecondLook(state, runs, reading);
  }
}

void ReadRecordedCapture(std::string_view capture, SignalState& state, Analysis analysis,
                         RecordReading& reading) {
  state.RawCapture = capture;
  const RecordStage trimmed = TrimRecording(state.RawCapture);
  if (trimmed != RecordStage::Code) return reading.EndAt(trimmed);
  ReadTrimmedRecording(state, analysis, reading);
}

RecordReading ReadRecordedCapture(std::string_view capture, SignalState& state, Analysis analysis) {
  RecordReading reading;
  ReadRecordedCapture(capture, state, analysis, reading);
  return reading;
}

}  // namespace keplo
