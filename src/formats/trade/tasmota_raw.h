#pragma once

#include <string>
#include <string_view>

#include "formats/trade/reading.h"

namespace keplo::trade {

/// Reads the compact form of raw data, "+8570-4240+550-1580C-510": each new length gets the next letter from
/// A on, and a letter stands for the length again, upper case for a mark and lower case for a space.
void ReadCompact(std::string_view text, LengthList& lengths);

/// Lengths in the compact form, rounded to 5 us as the format's own program rounds them.
std::string CompactText(const PulseTrain& press);

}  // namespace keplo::trade
