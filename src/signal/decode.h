#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "signal/runs.h"

namespace keplo {

/// Walks the runs of a signal into symbols, up to the end of its first frame: the first stretch of 1 and 0
/// symbols, one a base time, that has on both sides a mark or space too long for a digit. The space that ends
/// the samples is such a one, however short it is.
/// @param runs end in a space
/// @param baseT base time T, samples
/// @param frame replaced by the symbols of the frame; keeps its memory
/// @return false if there is no such stretch
bool WalkFirstFrame(RunSpan runs, int baseT, std::string& frame);

/// Place of the RC5 digit that flips on each new key press, from 0; it is no part of a command's identity
/// and always becomes 0.
inline constexpr std::size_t kToggleBitOffset = 2;

/// The digit at that place of a frame, which DecodeCode leaves out; nothing in a frame that has none.
std::optional<bool> ToggleOf(std::string_view frame, std::int16_t kind);

/// Writes the digits of a frame of pulse distance or width, one at most for two symbols and one more.
/// @param kind SONY is pulse width, any other pulse distance
/// @return the place after them
char* WriteDigits(std::string_view frame, std::int16_t kind, char* end);

/// Decodes one frame of 1 and 0 symbols into its code digits.
/// @param kind generic protocol; any other than SONY and RC5 is read as pulse distance
/// @param code replaced by the digits without the leading G; empty for a frame that is not valid biphase
void DecodeCode(std::string_view frame, std::int16_t kind, std::string& code);
std::string DecodeCode(std::string_view frame, std::int16_t kind);

}  // namespace keplo
