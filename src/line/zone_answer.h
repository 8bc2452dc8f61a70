#pragma once

#include <cstdint>

namespace keplo {

/// The zone that a character of the zone hardware names: its answer to a command, which is the command byte
/// less 64, or the plain digit of the zone.
/// @return 1 to 8; 0 for any other character
std::int16_t ZoneOfAnswer(char answer);

}  // namespace keplo
