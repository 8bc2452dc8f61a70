#pragma once

#include <cstdint>
#include <string_view>

namespace keplo {

class Win32Ser;

/// Result of QueryZone when the zone hardware gave no valid answer.
inline constexpr std::int16_t kNoZone = 9;

/// Asks the zone hardware, up to four times, from which zone the last command came.
/// @return the zone, or kNoZone
std::int16_t QueryZone(Win32Ser& line);

/// Selects the zone for the next command that is sent, in up to four attempts.
/// @param zone 1 to 8; any other has no command byte, and nothing is sent
/// @return true if the zone hardware gave the right answer
bool SendZone(Win32Ser& line, std::int16_t zone);

/// Command byte of the zone hardware: header digit, number of 1 bits in (zone - 1) in two bits, header digit,
/// (zone - 1) in three bits.
/// @param zone 1 to 8
/// @param header two digits, 0 or 1; commands carry "11"
/// @return the 7-bit value; 0 for a zone that does not exist
std::int16_t ExpandGenericBits(std::int16_t zone, std::string_view header);

}  // namespace keplo
