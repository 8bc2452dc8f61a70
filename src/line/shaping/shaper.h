#pragma once

#include <cstddef>

#include "line/shaping/shaping_space.h"
#include "signal/analysis_choice.h"
#include "signal/sample_bits.h"

namespace keplo {

/// How a line that knows edge times turns a press into a capture.
struct LineOptions {
  double SampleTime = kNominalSampleTime;  // microseconds
  bool Shape = true;                       // false: the edges as they were recorded
  int HoldMs = 250;                        // nobody presses a key for less; 0: as recorded
  const Analysis* ReadBy = nullptr;        // what reads the captures; null for the first analysis

  /// The second look compares the frames of a press. Copies of a frame would agree with it even where it is
  /// damaged, and a frame that was left out could not contradict it.
  bool KeepsFrames() const { return ReadBy != nullptr && *ReadBy == Analysis::Second; }
};

/// Shapes a press so that a capture of it can be measured.
///
/// A receiver lengthens marks and shortens spaces by 50 to 150 us. In a press that is plainly pulse distance,
/// pulse width or biphase the excess is measured, taken off the marks and given to the spaces, and equal
/// lengths come to lie within one sample of each other; a press that is none of these stays as it is. Frames
/// keep their places in time; those that the buffer would cut are left out, as long as a whole one is there
/// and the options do not keep them.
/// @param bufferBytes size of the capture buffer
/// @param shaped replaced; another train than the press
void ShapePress(Pulses press, std::size_t bufferBytes, const LineOptions& options, ShapingSpace& space,
                PulseTrain& shaped);

}  // namespace keplo
