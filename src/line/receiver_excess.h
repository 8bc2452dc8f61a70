#pragma once

#include <optional>
#include <vector>

#include "line/frames.h"

namespace keplo {

/// What a press tells of its remote and of the receiver that recorded it.
struct ReceiverExcess {
  double Unit;    // base time, microseconds
  double Excess;  // by which marks are too long and spaces too short, microseconds

  /// Length on air of a run of a frame, microseconds. Runs at even places are marks.
  double OnAir(std::size_t place, int run) const { return run + (place % 2 == 0 ? -Excess : Excess); }
};

/// Measures the excess on the shortest mark-and-space pairs of a press: in every line code they are one base
/// time each.
/// @return nothing if there are too few of them, or if the excess is none that a receiver has
std::optional<ReceiverExcess> MeasureReceiverExcess(const std::vector<Frame>& frames);

}  // namespace keplo
