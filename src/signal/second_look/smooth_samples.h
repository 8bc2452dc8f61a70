#pragma once

#include "signal/runs.h"
#include "signal/sample_words.h"

namespace keplo::robust {

/// Runs of up to this many samples are taken for interference and count as a part of what comes before them.
inline constexpr int kInterference = 2;

/// Whether a signal has interference. Silence comes before the first sample.
bool HasInterference(RunSpan runs);

/// Removes the interference from samples.
/// @param smooth replaced; keeps its capacity
void SmoothSamples(const SampleWords& samples, SampleWords& smooth);

}  // namespace keplo::robust
