#pragma once

#include "signal/second_look/frame.h"

namespace keplo::robust {

/// Whether no run of a frame is further from whole base times than the others let expect. A run that
/// something stretched to the length of another digit mostly is. The frame's runs must be of whole base times.
bool LiesInItsLengths(const Frame& frame);

}  // namespace keplo::robust
