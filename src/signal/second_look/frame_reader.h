#pragma once

#include <cstddef>
#include <vector>

#include "signal/second_look/frame_shapes.h"
#include "signal/second_look/runs.h"

namespace keplo::robust {

/// Everything that was found in a capture.
struct Findings {
  std::vector<Frame> Frames;
  std::vector<Piece> Unknown;  // whole and clean, but of none of the line codes
  std::size_t MostUnread = 0;  // runs of the longest piece that is neither read nor cut by the capture's end
  bool Stray = false;      // its runs fall into no lengths, so that those of its neighbours are in doubt too
  std::size_t Others = 0;  // pieces that are neither frame nor ditto nor the leader of a frame
};

/// Reads the frames of a capture.
/// @param runs must outlive the findings, whose pieces point into them
Findings ReadFrames(const RunList& runs);

}  // namespace keplo::robust
