#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace keplo {

/// Walks the runs of a sample string into symbols: one 1 or 0 a base time, G for a mark too long, g for a
/// space too long and for the end of the samples.
/// @param baseT base time T, samples
/// @return nothing if the samples end inside a run of 1
std::optional<std::string> WalkRuns(std::string_view samples, int baseT);

/// The first stretch of 1 and 0 symbols that has a mark on both sides.
/// @return a part of symbols; nothing if there is no such stretch
std::optional<std::string_view> IsolateFrame(std::string_view symbols);

/// Place of the RC5 digit that flips on each new key press, from 0; it is no part of a command's identity
/// and always becomes 0.
inline constexpr std::size_t kToggleBitOffset = 2;

/// Decodes one frame of 1 and 0 symbols into its code digits.
/// @param kind generic protocol; any other than SONY and RC5 is read as pulse distance
/// @return the digits without the leading G; empty for a frame that is not valid biphase
std::string DecodeCode(std::string_view frame, std::int16_t kind);

}  // namespace keplo
