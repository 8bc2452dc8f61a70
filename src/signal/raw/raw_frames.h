#pragma once

#include <cstddef>
#include <span>
#include <vector>

#include "signal/raw/raw_signal.h"

namespace keplo {

/// A frame of a held key without digits: a leader, a space and a mark, or little more.
inline constexpr std::size_t kLongestDitto = 5;  // lengths

/// How many lengths stand at their places, whatever frames behind them a held key repeats: those of the first
/// frame, and of the next one where there are too few to measure in the first.
std::size_t LengthsInPlace(const HeardLengths& heard);

/// The frames of stored lengths. Those that are equal, one after the other, are one step of the press: a held
/// key repeats it as often as it likes.
class RawFrames {
 public:
  struct Frame {
    std::size_t Begin, End;  // in lengths; the space behind stands at End
    std::size_t Step;
  };

  /// @param lengths microseconds
  /// @param gap spaces from this length on part frames, microseconds
  RawFrames(std::span<const int> lengths, int gap);

  const std::vector<Frame>& All() const { return frames_; }
  /// The step that ends at a length.
  std::size_t StepUpTo(std::size_t end) const;
  std::span<const int> Lengths(const Frame& frame) const {
    return lengths_.subspan(frame.Begin, frame.End - frame.Begin);
  }
  /// The space ahead of a step that is not the first, microseconds.
  int GapAhead(std::size_t step) const { return lengths_[FirstOf(step).Begin - 1]; }
  /// Whether a frame of one step may follow one of another in a press: a step again or the next one, and
  /// after the last any. The first comes again only where it did when the press was stored: an equal frame
  /// may be the part of a message that all keys have.
  bool MayFollow(std::size_t step, std::size_t next) const;
  /// Whether a step that is heard after the first capture of a press tells that its key repeats it. The parts
  /// of a long message that only begin behind that capture do not, nor do the equal frames that all keys of
  /// some remotes send before and behind their own.
  bool TellsOfRepeat(std::size_t step) const;
  /// Whether a press may end with a step. The frames that stand around the telling ones, and the parts of a
  /// message, are nothing by themselves, unless the capture ends before the next one.
  /// @param heard how long the press lasted, microseconds
  bool MayEndWith(std::size_t step, double heard) const;

 private:
  std::size_t LastStep() const { return frames_.back().Step; }
  const Frame& FirstOf(std::size_t step) const;
  bool AreEqual(const Frame& a, const Frame& b) const;

  std::span<const int> lengths_;
  std::vector<Frame> frames_;
};

/// From the beginning of a frame to that of the next, microseconds; the longest if they differ.
/// @return 0 for lengths of a single frame
int LongestPeriodOf(std::span<const int> lengths);

}  // namespace keplo
