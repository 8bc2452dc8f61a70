#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "signal/analysis_choice.h"
#include "signal/code_values.h"
#include "signal/first_analysis.h"
#include "signal/runs.h"
#include "signal/sample_bits.h"
#include "signal/signal_state.h"

namespace keplo {

/// Length of the record flow's capture buffer, bytes.
inline constexpr std::size_t kRecordCaptureBytes = 1000;

/// How far the reading of a recording came. Each stage keeps what the earlier ones found.
enum class RecordStage {
  Empty,     // no signal in the capture
  Short,     // too little signal
  NoTiming,  // no base time
  Unknown,   // a base time, but none of the line codes; or see IsDoubtful
  Fragment,  // one short frame: digits, but no command
  Code
};

/// The runs of a recording.
struct RecordedRuns {
  std::string Symbols;  // 1 and 0, one a base time; G and g for marks and spaces too long for a digit, and g
                        // at the end only after a long silence
  std::vector<int> Ones;   // lengths of the runs of 1, samples; the run that ends the samples is left out
  std::vector<int> Zeros;  // the same of 0
};

/// Walks the runs of a recording. A signal that ends in a mark, or in a short space, simply ends there. A
/// first mark of length 0, before a space, counts as one unit.
/// @param baseT base time T, samples
/// @param walked replaced; keeps its capacity
void WalkRecording(RunSpan runs, int baseT, RecordedRuns& walked);

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
  bool IsDoubtful = false;    // there are frames, but they differ or cannot be believed
  bool HasOddLength = false;  // ... or they are whole, with a number of digits that no code has
  int PulseUs() const { return BaseT * kNominalSampleTime; }  // base time, microseconds

  // From Fragment on.
  RecordedRuns Runs;
  std::string Decoded;     // all frames, as DecodeFrames gives them
  std::string FirstFrame;  // digits of the first two frames, RC5 with the toggle digit
  std::string SecondFrame;
  bool Repeats = false;                  // the two are equal
  std::optional<std::int16_t> SyncType;  // 0 no sync, 1 before the first frame only, 2 before all; may be
                                         // missing for pulse distance and is for other fragments

  std::string SendAs;  // the value of SENDAS= that a section needs to send the code; mostly empty

  /// Digits without the leading G: at Fragment those of the piece, at Code the identity of the command, RC5
  /// with 0 for the toggle digit. May hold x and y, and is empty if two marks follow with nothing between.
  std::string Code;

  // At Code.
  std::optional<char> Toggle;        // RC5 and RC6: the toggle digit as it was received
  std::optional<CodeValues> Values;  // address and command

  /// Clears the reading; its strings keep their capacity.
  void EndAt(RecordStage stage);
};

/// Cuts a capture to its signal and at most 30 silent bytes after it.
/// @return RecordStage::Empty or RecordStage::Short for a capture that holds too little; RecordStage::Code if
/// it may be read
RecordStage TrimRecording(std::string& capture);

/// Reads the trimmed capture of the state; fills its Measured, of which base time and kind stay as they were
/// if nothing can be measured.
/// @param analysis with Analysis::Second the whole frames that the second look finds, where there are any
/// @param reading replaced; one that is reused saves the allocations
void ReadTrimmedRecording(SignalState& state, Analysis analysis, RecordReading& reading);

/// Trims and reads the bytes of a capture; leaves capture and timing in the state.
void ReadRecordedCapture(std::string_view capture, SignalState& state, Analysis analysis,
                         RecordReading& reading);
RecordReading ReadRecordedCapture(std::string_view capture, SignalState& state,
                                  Analysis analysis = Analysis::First);

}  // namespace keplo
