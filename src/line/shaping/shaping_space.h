#pragma once

#include <cstddef>
#include <vector>

#include "line/shaping/frames.h"
#include "line/shaping/line_code.h"

namespace keplo {

/// A frame and its runs in units of the line code.
struct MeasuredFrame {
  Frame Signal;
  FrameUnits Units;
};

/// Room in which presses are shaped; it stays from one press to the next.
struct ShapingSpace {
  PulseTrain Smooth;
  PulseTrain Laid;
  std::vector<int> Units;
  std::vector<Frame> Frames;
  std::vector<MeasuredFrame> Sound;
};

}  // namespace keplo
