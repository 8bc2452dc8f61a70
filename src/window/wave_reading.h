#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "signal/sample_bits.h"

namespace keplo {

inline constexpr double kMsPerSample = kNominalSampleTime / 1000.0;  // of a trace

/// A stretch of a trace on one level, samples.
struct WaveRun {
  bool Mark;
  int Start, Length;

  int End() const { return Start + Length; }
};

/// What a person reads off a trace: the run under a pointer, and the distance of two cursors. Samples count
/// from 0.
class WaveReading {
 public:
  /// Takes the samples of a trace; those of another one end pointer and cursors.
  void Read(std::string_view samples);

  const std::vector<WaveRun>& Runs() const { return runs_; }
  int Samples() const { return runs_.empty() ? 0 : runs_.back().End(); }

  /// Points at a sample; one that the trace does not have ends the pointing.
  void PointAt(std::optional<int> sample);
  /// Moves the pointer to the beginning of the next run, or of the one before with a step of -1.
  void StepPointer(int step);
  std::optional<int> Pointer() const { return pointer_; }
  const WaveRun* RunAtPointer() const { return pointer_ ? RunAt(*pointer_) : nullptr; }
  /// The run of a sample; none of one that the trace does not have.
  const WaveRun* RunAt(int sample) const;
  /// Kind and length of the run at the pointer, in microseconds and units of T; empty without one.
  /// @param pulse T in microseconds; 0 if it is not known
  std::string PointerText(int pulse) const;

  /// Puts a cursor at the pointer: the first, then the second, then a first one again.
  void PlaceCursor();
  /// The cursors are again as they were before the last one was placed.
  void TakeCursorBack() { cursors_ = cursorsBefore_; }
  void RemoveCursors() { cursors_.clear(); }
  const std::vector<int>& Cursors() const { return cursors_; }
  /// The distance of the two cursors, or the time of the only one.
  std::string CursorText(int pulse) const;

 private:
  std::string samples_;
  std::vector<WaveRun> runs_;
  std::optional<int> pointer_;
  std::vector<int> cursors_, cursorsBefore_;
};

/// A mark of a time axis.
struct TimeTick {
  double Ms;
  bool Labelled;
};

/// The ticks of a time axis between two times, in steps of 1, 2 or 5 that leave room between the labels.
/// @param shortestMs least time from one label to the next
std::vector<TimeTick> TimeTicks(double fromMs, double toMs, double shortestMs);

/// A time without needless digits: "0.5", "20".
std::string TimeText(double ms);

}  // namespace keplo
