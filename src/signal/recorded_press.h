#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "signal/analysis.h"
#include "signal/code_values.h"
#include "signal/monitored_press.h"
#include "signal/sample_bits.h"
#include "signal/timing.h"

namespace keplo {

/// Length of the record flow's capture buffer, bytes.
inline constexpr std::size_t kRecordCaptureBytes = 1000;

/// Where the road from a recording to a code ended. Each stage knows all that the ones before it know.
enum class RecordStage {
  Empty,     // no signal in the capture
  Short,     // too little signal
  NoTiming,  // no base time
  Unknown,   // a base time, and a line code that is none of the three
  Fragment,  // one short frame: digits, but no command
  Code
};

/// The runs of a recording.
struct RecordedRuns {
  std::string Symbols;     // as in WalkRuns, but g at the end only after a long silence
  std::vector<int> Ones;   // lengths of the runs of 1, samples; the run that ends the samples is left out
  std::vector<int> Zeros;  // the same of 0
};

/// Walks the runs of a recording. Samples that end in a run of 1, or in a short one of 0, simply end there.
/// Samples that begin with 0 give a first run of 1 of length 0, which counts as one unit.
/// @param baseT base time T, samples
RecordedRuns WalkRecording(std::string_view samples, int baseT);

/// Run lengths as one text, each after a -: "-160-10-11".
std::string RunLengthsText(const std::vector<int>& lengths);

/// Everything that is told of one recorded key press.
struct RecordReading {
  RecordReading() = default;
  explicit RecordReading(RecordStage stage) : Ended(stage) {}

  RecordStage Ended = RecordStage::Empty;

  // From Unknown on.
  Analysis ReadBy = Analysis::First;
  std::int16_t BaseT = 0;  // samples
  std::int16_t ProtoKind = kUnknown;
  int PulseUs() const { return BaseT * kNominalSampleTime; }  // base time, microseconds

  // From Fragment on.
  RecordedRuns Runs;
  std::string Decoded;     // all frames, as DecodeFrames gives them
  std::string FirstFrame;  // digits of the first two frames, RC5 with the toggle digit
  std::string SecondFrame;
  bool Repeats = false;                  // the two are equal
  std::optional<std::int16_t> SyncType;  // 0 no sync, 1 before the first frame only, 2 before all; may be
                                         // missing for pulse distance and is for other fragments

  /// Digits without the leading G: at Fragment those of the piece, at Code the identity of the command, RC5
  /// with 0 for the toggle digit. May hold x and y, and is empty if two marks follow with nothing between.
  std::string Code;

  // At Code.
  std::optional<char> Toggle;        // RC5: the toggle digit as it was received
  std::optional<CodeValues> Values;  // address and command
};

/// Cuts a capture to its signal and at most 30 silent bytes after it.
/// @return RecordStage::Empty or RecordStage::Short for a capture that holds too little; RecordStage::Code if
/// it may be read
RecordStage TrimRecording(std::string& capture);

/// Reads the sample string of a trimmed recording.
/// @param measured as with AnalyseTiming: base time and kind stay as they were if nothing can be measured
/// @param analysis with Analysis::Second the whole frames that the second look finds, where there are any
RecordReading ReadRecordedSamples(std::string_view samples, Timing& measured,
                                  Analysis analysis = Analysis::First);

/// The whole road from the bytes of a capture; leaves capture, sample string and timing in the state.
RecordReading ReadRecordedCapture(std::string_view capture, SignalState& state,
                                  Analysis analysis = Analysis::First);

}  // namespace keplo
