#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "signal/analysis_choice.h"
#include "signal/signal_state.h"

namespace keplo {

/// How far the reading of a capture came.
enum class Stage {
  Empty,
  Short,
  Doubtful,  // the second look refuses what the first analysis makes of the capture, or finds one frame alone
             // that proves too little by itself
  NoTiming,
  EndsInMark,
  NoFrame,
  Unknown,
  Length,
  Code,
  Raw  // no analysis reads a code, but the lengths are those of a raw command, see MatchRawCommands
};

inline constexpr std::size_t kStages = 10;

/// Name of a stage as the command line prints it: "empty", "short", "doubtful", "no-timing",
/// "ends-in-mark", "no-frame", "unknown", "length", "code", "raw".
std::string_view StageName(Stage stage);

/// Whether a line code has codes of so many digits, as the monitor takes them.
bool IsCodeLength(std::size_t digits, std::int16_t kind, Analysis analysis);

/// What the monitor made of one capture.
struct MonitorReading {
  MonitorReading() = default;
  explicit MonitorReading(Stage stage) : Ended(stage) {}

  Stage Ended = Stage::Empty;
  std::optional<Analysis> ReadBy;  // the analysis that read the digits; none without digits
  /// Without the leading G; set from Stage::Length on, and a code from Stage::Code on. At Stage::Doubtful
  /// they are those of a single frame, which count only if a command with exactly these digits was learned.
  std::string Digits;
  std::optional<bool> Toggle;  // of a code that has a digit which flips on each new press
  bool Dittos = false;         // the frame was repeated by signs without digits, as NEC does
  int Leader = 0;              // mark of its leader, samples; 0 without one, or where it was not measured
  int SecondTap = 0;           // where a second press of the key begins, samples; 0 if none is known
  std::optional<bool> SecondToggle;  // of that

  bool HasCode() const { return Ended >= Stage::Code; }

  /// Clears the reading; the string keeps its capacity.
  void EndAt(Stage stage) {
    Ended = stage;
    ReadBy.reset();
    Digits.clear();
    Toggle.reset();
    Dittos = false;
    Leader = 0;
    SecondTap = 0;
    SecondToggle.reset();
  }
};

/// Cuts a capture to its signal and at most 100 silent bytes after it.
/// @return Stage::Empty or Stage::Short for a capture that holds too little; Stage::Code if it may be read
Stage TrimCapture(std::string& capture);

/// Reads the trimmed capture of the state into a code; fills its Measured.
///
/// With Analysis::Second the second look goes first; it leaves the histograms alone. It accepts pulse width
/// of 12 digits and more, where the first analysis knows 12 alone.
/// @param reading replaced; one that is reused saves the allocations
void ReadTrimmedCapture(SignalState& state, Analysis analysis, MonitorReading& reading);

/// Trims and reads the bytes of a capture.
void ReadCapture(std::string_view capture, SignalState& state, Analysis analysis, MonitorReading& reading);
MonitorReading ReadCapture(std::string_view capture, SignalState& state, Analysis analysis = Analysis::First);

/// Whether the monitor would read the code of a recording too, with the second look. Its captures are
/// shorter, so that the frames of some air conditioners do not fit, and it takes fewer numbers of digits for
/// a code.
/// @param recording samples from the first mark on
/// @param sampleTime microseconds
bool IsReadByMonitor(std::string_view recording, std::string_view code, double sampleTime);

}  // namespace keplo
