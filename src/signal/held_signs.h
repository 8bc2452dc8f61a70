#pragma once

#include "signal/runs.h"

namespace keplo {

/// From the beginning of a frame to that of the next, samples; the longest if they differ.
/// @return 0 for the runs of a single frame
int FramePeriod(RunSpan runs);

/// Whether a signal is made of dittos alone: the leader, half its usual space and a mark, which say for NEC
/// that the key is still held. The first one may have lost its head, and the last one its tail.
/// @param baseT base time of the code that they repeat, samples
bool AreDittos(RunSpan runs, int baseT);

}  // namespace keplo
