#pragma once

#include "signal/runs.h"

namespace keplo {

/// From the beginning of a frame to that of the next, samples; the longest if they differ.
/// @return 0 for the runs of a single frame
int FramePeriod(RunSpan runs);

/// Whether a leader, its space and a mark, samples, say that a key is still held: its leader is that of the
/// key's frame, and the space up to as long.
/// @param usual mark of the leader of the frame; 0 without one
bool IsHeldSign(int leader, int space, int mark, int usual);

/// Whether a signal is made of dittos alone: the leader, half its usual space and a mark, which say for NEC
/// that the key is still held; others say it with their own leader and up to its whole space. The first one
/// may have lost its head, and the last one its tail.
/// @param baseT base time of the code that they repeat, samples
/// @param leader mark of its leader, samples; 0 where it is not known
bool AreDittos(RunSpan runs, int baseT, int leader);

}  // namespace keplo
