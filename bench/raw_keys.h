#pragma once

#include <optional>

#include "doubles/dice.h"
#include "signal/raw/raw_index.h"

namespace keplo::bench {

using tests::Dice;

/// What a key of an air conditioner, a fan or a heater sends, microseconds: a signal that no analysis reads.
RawLengths RandomRawKey(Dice& dice);

/// The lengths that are stored of a key, from a press with a receiver's distortion.
/// @param sampleTime microseconds
std::optional<RawLengths> LearnRawKey(const RawLengths& key, double sampleTime, Dice& dice);

}  // namespace keplo::bench
