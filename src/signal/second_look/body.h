#pragma once

#include <cstddef>

#include "signal/sample_bits.h"
#include "signal/second_look/length_groups.h"
#include "signal/second_look/press_runs.h"

namespace keplo::robust {

inline constexpr std::size_t kFewestMarks = 12;  // of a clean signal, not of noise

/// A leader in front of a frame, samples.
struct Leader {
  int Mark = 0, Space = 0;
  int MayLack = 0;  // by how much the mark may have been longer, if the capture began inside it

  /// Whether the mark, with what the capture may have missed of it, lies between two lengths.
  bool MarkIsWithin(double excess, double least, double most) const {
    return Mark - excess <= most && Mark - excess + MayLack >= least;
  }
  /// Whether the two could lead frames of one remote; what a lamp begins with differs from time to time.
  bool IsLike(const Leader& other) const;
};

/// The runs of a piece without those of its leader, and what lengths they fall into.
struct Body {
  const int* First = nullptr;
  std::size_t Size = 0;
  double Unit = 0;                         // about one base time, samples
  double SampleTime = kNominalSampleTime;  // microseconds
  Lengths Marks, Spaces;

  std::size_t MarkCount() const { return Size / 2 + 1; }
  /// Length of a mark and a space of one base time each, which has no excess.
  double ShortestPair() const { return Marks.Short().Mean + Spaces.Short().Mean; }
  bool LengthsAreDistinct() const { return Marks.Number > 0 && Spaces.Number > 0; }
  bool HasLengths(std::size_t marks, std::size_t spaces) const {
    return Marks.Number == marks && Spaces.Number == spaces;
  }
};

/// A first estimate of the lengths in a press, samples.
struct RoughLengths {
  static constexpr int kLongestTold = 255;

  double Unit = 0;  // about one base time; up to two where longer runs are far more common
  int Longest = 0;  // run, kLongestTold at most
};

/// Measures the runs of a press and of its pieces; reuses its buffers from one to the next.
class BodyReader {
 public:
  /// @param us length of a sample of the captures to come, microseconds
  void SetSampleTime(double us) { sampleTime_ = us; }
  double SampleTime() const { return sampleTime_; }

  RoughLengths Rough(const PressRuns& runs);

  /// @param skipped runs of a leader at the head of the piece
  Body Read(const Piece& piece, std::size_t skipped);

 private:
  /// Counts marks and spaces, which take turns; a run longer than that counts as one so long.
  void CountRuns(RunSpan runs, int longest);
  double UnitOf(std::size_t runs) const;

  LengthCounts marks_, spaces_;
  double sampleTime_ = kNominalSampleTime;
};

}  // namespace keplo::robust
