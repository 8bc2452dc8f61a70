#pragma once

#include <vector>

#include "line/shaping/frames.h"
#include "line/shaping/line_code.h"

namespace keplo {

/// Frees the frames of a press of the receiver's excess and lays them on whole samples: every mark and space
/// gets the whole number of samples below or above its length on air, so that equal lengths stay within one
/// sample of each other whatever their jitter was. All frames keep their places in time, to half a sample; a
/// frame that fits no line code stays as it is.
/// @param sampleTime microseconds
std::vector<Frame> LayOnWholeSamples(const std::vector<Frame>& frames, const PressTiming& timing,
                                     double sampleTime);

}  // namespace keplo
