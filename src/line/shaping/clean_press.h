#pragma once

#include "line/shaping/shaping_space.h"

namespace keplo {

/// Frees a recorded press of what is plainly no part of its signal: glitches within marks and spaces, a flash
/// before a leader, a first frame that the recording began in, a last one that it ended in, and frames of a
/// plain line code with a run that is no length of that code. A press in which no whole frame would remain
/// loses its glitches only.
/// @param clean replaced; another train than the press
void CleanPress(Pulses press, ShapingSpace& space, PulseTrain& clean);

/// Takes the glitches and the flash out alone.
/// @param smooth replaced; another train than the press
void RemoveGlitches(Pulses press, PulseTrain& smooth);

}  // namespace keplo
