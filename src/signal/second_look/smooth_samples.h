#pragma once

#include "signal/runs.h"
#include "signal/sample_words.h"

namespace keplo::robust {

/// Runs of up to so many samples are taken for interference and belong to what comes before them.
inline constexpr int kInterference = 2;

/// Whether a signal has interference. Silence comes before the first sample.
bool HasInterference(RunSpan runs);

/// Frees samples of interference.
/// @param smooth replaced; keeps its memory
void SmoothSamples(const SampleWords& samples, SampleWords& smooth);

}  // namespace keplo::robust
