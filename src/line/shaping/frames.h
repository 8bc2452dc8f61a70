#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "formats/pulse_text.h"

namespace keplo {

/// Marks and spaces in turn of a press or a part of one, microseconds.
using Pulses = std::span<const int>;

/// First marks from this length on, microseconds, are leaders: the double mark of RC5 stays below with any
/// receiver, the leader of SONY, the shortest known, above.
inline constexpr int kShortestLeader = 2100;

/// One frame of a key press.
struct Frame {
  Pulses Runs;             // begins and ends with a mark; a part of the press
  std::int64_t Start = 0;  // microseconds after the first edge of the press

  /// Length from its first edge to the end of its last mark, microseconds.
  std::int64_t Length() const;
  std::int64_t End() const { return Start + Length(); }
};

/// Splits a press at its long spaces. A leader and its space belong to the frame that they open. A closing
/// space belongs to no frame.
/// @param frames replaced; point into the press
void SplitFrames(Pulses press, std::vector<Frame>& frames);

/// Puts frames back into a press.
/// @param end where the silence after the last frame ends, microseconds after the first edge of the press;
///        no silence is written if that is not after the last frame
/// @param press replaced; the frames must point into another one
void JoinFrames(std::span<const Frame> frames, std::int64_t end, PulseTrain& press);

/// Length of a whole press, microseconds.
std::int64_t LengthOf(Pulses press);

}  // namespace keplo
