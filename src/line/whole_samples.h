#pragma once

#include <vector>

#include "line/frames.h"
#include "line/receiver_excess.h"

namespace keplo {

/// Frees the frames of a press of the receiver's excess and lays those that are plainly of one line code on
/// whole samples: every mark and space gets the whole number of samples below or above its length on air, so
/// that equal lengths stay within one sample of each other whatever their jitter was. Frames that fit no line
/// code keep their jitter. All frames keep their places in time, to half a sample.
/// @param sampleTime microseconds
std::vector<Frame> LayOnWholeSamples(const std::vector<Frame>& frames, const ReceiverExcess& receiver,
                                     double sampleTime);

}  // namespace keplo
