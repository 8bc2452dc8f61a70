#pragma once

#include <cstdint>
#include <span>

#include "signal/raw/raw_signal.h"

namespace keplo {

/// Sums of squared differences, square microseconds. Edges tell more; a single length that is off counts once
/// in lengths, but in all edges behind it.
struct RawSquares {
  float Edges = 0, Lengths = 0;
};

/// How well stored lengths fit what was heard.
struct RawFit {
  enum class How : std::uint8_t {
    None,
    Scaled,  // all lengths are longer or shorter by the same part, as after a change of PROCDELAY
    Exact
  };

  How Fits = How::None;
  RawSquares Squares = {};
  bool IsClose = false;      // as near as two hearings without jitter are
  bool IsSame = false;       // close, and its edges are where a command of its own would hardly have them
  bool MayBeOneKey = false;  // no edges are where only another length would put them, or no length is another
};

/// Compares what was heard with stored lengths, all frames of the press.
///
/// The receiver's mark excess is measured against the stored lengths and taken off. The first mark that was
/// heard may have begun before the capture. A press may hold fewer frames than the stored one or repeat them,
/// with the short frames that some remotes send for a held key, and a capture may end within a frame.
/// @param stored microseconds
/// @param lost how many stored lengths stand before the first that was heard; even
RawFit CompareRaw(const HeardLengths& heard, std::span<const int> stored, std::size_t lost = 0);

/// Whether a signal that follows the first capture of a press goes on with it: it holds nothing but frames of
/// the press, among them one that tells that its key repeats them.
/// @param stored microseconds
bool GoesOnWithRaw(const HeardLengths& heard, std::span<const int> stored);

}  // namespace keplo
