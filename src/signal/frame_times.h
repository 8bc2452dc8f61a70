#pragma once

#include <cstddef>
#include <span>
#include <vector>

#include "signal/runs.h"

namespace keplo {

/// A stretch of marks and spaces between two gaps; a gap is longer than any space inside a frame.
struct TimedPiece {
  RunSpan Runs;       // from its first mark to its last
  int Begin = 0;      // samples from the beginning of the capture
  bool Whole = true;  // false if the capture ends inside it

  int End() const;  // of its last mark, samples
  bool IsFrame() const { return Runs.size() >= kFewestRuns; }

 private:
  static constexpr std::size_t kFewestRuns = 9;
};

/// The pieces of a capture, in order.
/// @param sampleTime microseconds
std::vector<TimedPiece> PiecesIn(RunSpan runs, double sampleTime);

/// The time from the beginning of one piece to that of the next, samples; the longest if they differ.
/// @return 0 if there is only one
int FramePeriod(std::span<const TimedPiece> pieces);

/// How a key repeats its frame while it is held.
struct UsualRepeat {
  double Longest = 0;    // from the beginning of a frame to that of the next, at most; samples
  bool BySigns = false;  // it sends signs of three runs in place of frames
  int Heard = 0;         // the period heard earlier in this press, samples; 0 if none was
};

/// Finds a frame that is no repeat of the one ahead of it, but a key pressed once more:
/// - more time has passed than between two frames of any held key; or, where this key has already repeated
///   its frame, more than it takes even if one repeat is lost;
/// - or the key repeats by signs, and this is a frame.
///
/// A whole frame is a second tap of this key. One that the capture cuts is another key's, unless it begins
/// like this key's: nothing tells then whose it is, and it counts as held on.
/// @param sampleTime microseconds
/// @return its place; 0 if all is one press
std::size_t FindSecondTap(std::span<const TimedPiece> pieces, const UsualRepeat& usual, double sampleTime);

}  // namespace keplo
