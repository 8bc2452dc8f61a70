#pragma once

#include "signal/runs.h"

namespace keplo {

/// Whether a leader, its space and a mark, samples, are NEC's sign that a key is still held: half the usual
/// space, whatever frame they follow.
bool IsDitto(int leader, int space, int mark);

/// Whether a leader, its space and a mark, samples, say that a key is still held: its leader is that of the
/// key's frame, and the space up to as long.
/// @param usual mark of the leader of the frame; 0 without one
bool IsHeldSign(int leader, int space, int mark, int usual);

/// Whether a signal is made of such signs alone. The first one may have lost its head, and the last one its
/// tail.
/// @param baseT base time of the code that they repeat, samples
/// @param leader mark of its leader, samples; 0 where it is not known
/// @param sampleTime microseconds
bool AreDittos(RunSpan runs, int baseT, int leader, double sampleTime);

}  // namespace keplo
