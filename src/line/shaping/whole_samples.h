#pragma once

#include "line/shaping/shaping_space.h"

namespace keplo {

/// Frees the frames of a press of the receiver's excess and lays them on whole samples: every mark and space
/// gets the whole number of samples below or above its length on air, so that equal lengths stay within one
/// sample of each other whatever their jitter was. All frames keep their places in time, to half a sample; a
/// frame that fits no line code stays as it is.
/// @param sampleTime microseconds
/// @param space its Frames point into its Laid after that
void LayOnWholeSamples(const PressTiming& timing, double sampleTime, ShapingSpace& space);

}  // namespace keplo
