#pragma once

#include <optional>

#include "signal/raw/raw_index.h"
#include "table_dice.h"

namespace keplo::bench {

/// What a key of an air conditioner, a fan or a heater sends, microseconds: a signal that no analysis reads.
RawLengths RandomRawKey(Dice& dice);

/// The lengths that are stored of a key, from a press with a receiver's distortion.
/// @param sampleTime microseconds
std::optional<RawLengths> LearnRawKey(const RawLengths& key, double sampleTime, Dice& dice);

}  // namespace keplo::bench
