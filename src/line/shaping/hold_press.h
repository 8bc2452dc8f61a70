#pragma once

#include "line/shaping/shaping_space.h"

namespace keplo {

/// A press of a single frame as a key held for a time would send it: the frame again and again, at the period
/// of its protocol. A press of several frames stays as it is, and so does one whose frame lacks its leader.
/// @param holdMs how long the key is held, milliseconds; a frame that has begun by then is sent to its end.
///        0 leaves the press as it was recorded.
/// @param held replaced; another train than the press
void HoldPress(Pulses press, int holdMs, ShapingSpace& space, PulseTrain& held);

}  // namespace keplo
