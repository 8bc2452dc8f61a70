#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "signal/sample_bits.h"

namespace keplo {

inline constexpr double kMsPerSample = kNominalSampleTime / 1000.0;

/// A run of equal samples of a trace.
struct WaveRun {
  bool Mark;
  int Start, Length;

  int End() const { return Start + Length; }
};

/// What a user measures in a trace: the run at a pointer, and the distance between two cursors. Samples count
/// from 0.
class WaveReading {
 public:
  /// Reads the samples of a trace. If they are new, pointer and cursors are removed.
  void Read(std::string_view samples);

  const std::vector<WaveRun>& Runs() const { return runs_; }
  int Samples() const { return runs_.empty() ? 0 : runs_.back().End(); }

  /// Moves the pointer to a sample; a sample outside the trace removes it.
  void PointAt(std::optional<int> sample);
  /// Moves the pointer to the beginning of the next run, or backwards if step is -1.
  void StepPointer(int step);
  std::optional<int> Pointer() const { return pointer_; }
  const WaveRun* RunAtPointer() const { return pointer_ ? RunAt(*pointer_) : nullptr; }
  /// The run that contains a sample; null outside the trace.
  const WaveRun* RunAt(int sample) const;
  /// Kind and length of the run at the pointer, in microseconds and units of T; empty without a pointer.
  /// @param pulse T in microseconds; 0 if unknown
  std::string PointerText(int pulse) const;

  /// Places a cursor at the pointer. A third one replaces the other two.
  void PlaceCursor();
  /// Restores the cursors as they were before the last PlaceCursor.
  void UndoCursor() { cursors_ = cursorsBefore_; }
  void RemoveCursors() { cursors_.clear(); }
  const std::vector<int>& Cursors() const { return cursors_; }
  /// The distance between the two cursors, or the time of the only one.
  std::string CursorText(int pulse) const;

 private:
  std::string samples_;
  std::vector<WaveRun> runs_;
  std::optional<int> pointer_;
  std::vector<int> cursors_, cursorsBefore_;
};

/// A tick of a time axis.
struct TimeTick {
  double Ms;
  bool Labelled;
};

/// The ticks of a time axis between two times, labelled in steps of 1, 2 or 5 times a power of ten.
/// @param shortestMs the shortest permitted step
std::vector<TimeTick> TimeTicks(double fromMs, double toMs, double shortestMs);

/// A time without trailing zeros: "0.5", "20".
std::string TimeText(double ms);

}  // namespace keplo
