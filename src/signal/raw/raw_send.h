#pragma once

#include <cstdint>
#include <span>
#include <string>

namespace keplo {

/// Length of the slots that raw commands are sent in, microseconds.
inline constexpr std::int32_t kRawSlot = 10;

/// What a receiver would capture of lengths, with silence after them.
std::string CaptureOfLengths(std::span<const int> lengths);

/// Lengths as slots or samples, one character 0 or 1 each; the edges lie on the nearest border of two.
/// @param lengths marks and spaces in turn, microseconds
/// @param slot microseconds
std::string SlotsOfLengths(std::span<const int> lengths, std::int32_t slot);

}  // namespace keplo
