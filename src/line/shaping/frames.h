#pragma once

#include <cstdint>
#include <vector>

#include "formats/pulse_text.h"

namespace keplo {

/// One frame of a key press.
struct Frame {
  PulseTrain Runs;         // begins and ends with a mark
  std::int64_t Start = 0;  // microseconds behind the first edge of the press

  /// Length from its first edge to the end of its last mark, microseconds.
  std::int64_t Length() const;
  std::int64_t End() const { return Start + Length(); }
};

/// Splits a press at its long spaces. A leader and its space belong to the frame that they open. A closing
/// space belongs to no frame.
std::vector<Frame> SplitFrames(const PulseTrain& train);

/// Puts frames back into a press.
/// @param end where the silence behind the last frame ends, microseconds behind the first edge of the press;
///        no silence is written if that is not behind the last frame
PulseTrain JoinFrames(const std::vector<Frame>& frames, std::int64_t end);

/// Length of a whole press, microseconds.
std::int64_t LengthOf(const PulseTrain& train);

}  // namespace keplo
