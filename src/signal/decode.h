#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "signal/runs.h"

namespace keplo {

/// Walks the runs of a signal into symbols, up to the end of its first frame: the first stretch of 1 and 0
/// symbols, one a base time, between two runs that are too long for a digit. The space that ends the samples
/// counts as such a run, however short it is.
/// @param runs end in a space
/// @param baseT base time T, samples
/// @param frame replaced by the symbols of the frame; keeps its capacity
/// @return false if there is no such stretch
bool WalkFirstFrame(RunSpan runs, int baseT, std::string& frame);

/// Place of the RC5 toggle digit, from 0. It flips on each new key press, so it is no part of a command and
/// is always stored as 0.
inline constexpr std::size_t kToggleBitOffset = 2;

/// The toggle digit of a frame of RC5 or RC6, which DecodeCode leaves out; nothing for other frames.
std::optional<bool> ToggleOf(std::string_view frame, std::int16_t kind);

/// Writes the digits of a frame of pulse distance or width: at most half as many as it has symbols, and one.
/// @param kind SONY is pulse width, any other pulse distance
/// @return the place after them
char* WriteDigits(std::string_view frame, std::int16_t kind, char* end);

/// Decodes one frame of 1 and 0 symbols into its code digits.
/// @param kind generic protocol; any other than SONY and RC5 is read as pulse distance
/// @param code replaced by the digits without the leading G; empty for a frame that is not valid biphase
void DecodeCode(std::string_view frame, std::int16_t kind, std::string& code);
std::string DecodeCode(std::string_view frame, std::int16_t kind);

}  // namespace keplo
