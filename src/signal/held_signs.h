#pragma once

#include "signal/runs.h"

namespace keplo {

/// Whether a leader, its space and a mark, samples, are a ditto, NEC's sign that a key is still held: the
/// space is half as long as in a frame. What frame it follows does not matter.
bool IsDitto(int leader, int space, int mark);

/// Whether a leader, its space and a mark, samples, are any remote's sign that a key is still held: the
/// leader of the key's own frame, and a space that is hardly longer.
/// @param usual leader mark of that frame; 0 without one
bool IsHeldSign(int leader, int space, int mark, int usual);

/// Whether a signal is made of such signs alone. The first one may have lost its head, and the last one its
/// tail.
/// @param baseT base time of the code that they repeat, samples
/// @param leader mark of its leader, samples; 0 where it is not known
/// @param sampleTime microseconds
bool AreDittos(RunSpan runs, int baseT, int leader, double sampleTime);

}  // namespace keplo
