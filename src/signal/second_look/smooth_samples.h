#pragma once

#include "signal/sample_words.h"

namespace keplo::robust {

/// Runs of up to so many samples are taken for interference and belong to what comes before them.
inline constexpr int kInterference = 2;

/// Frees samples of interference. Silence comes before the first sample.
/// @param smooth replaced; keeps its memory
/// @return whether there was any interference
bool SmoothSamples(const SampleWords& samples, SampleWords& smooth);

}  // namespace keplo::robust
