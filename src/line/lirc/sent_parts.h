#pragma once

#include <chrono>
#include <cstddef>
#include <span>
#include <vector>

#include "line/slot_clock.h"

namespace keplo {

/// Stretches of light that the kernel takes in one write.
inline constexpr std::size_t kMostMarks = 512;

/// Where the part of a signal ends that the kernel takes in one write: an odd count of at most 1,023 lengths,
/// less than 500 ms in all; some devices take less. The rest begins after the longest space, which may take
/// the most unnoticed.
/// @param first the stretch of light with which the part begins
/// @param most stretches of light that the device takes in one write
/// @return the stretch of light with which the next part begins; their number if there is none
std::size_t EndOfPart(std::span<const LitSlots> lit, std::size_t first, std::chrono::microseconds slot,
                      std::size_t most = kMostMarks);

/// Marks and spaces of a part, microseconds, without the silence around it.
std::vector<unsigned> LengthsOf(std::span<const LitSlots> part, std::chrono::microseconds slot);

}  // namespace keplo
