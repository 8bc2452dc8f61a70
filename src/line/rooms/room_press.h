#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

#include "formats/pulse_text.h"
#include "line/slot_clock.h"

namespace keplo {

/// Longest message that is read, bytes.
inline constexpr std::size_t kLongestRoomMessage = 65'536;

/// The press that a receiver of a room tells: Home Assistant's "timings", Tasmota's "IrReceived" in numbers
/// or letters, or a list of lengths as ESPHome has it.
/// @return empty for a message that is of something else, or of nothing
/// @throws Failure with what was found and expected, for one that should be a press and is none
PulseTrain PressOfMessage(std::string_view payload, const std::string& topic);

/// What a sender of a room is told: a line of lengths for a topic of Tasmota's IRSend, else Home Assistant's
/// lengths.
/// @param carrier Hz
std::string MessageOfSignal(std::span<const LitSlots> lit, std::chrono::microseconds slot,
                            std::int32_t carrier, std::string_view topic);

}  // namespace keplo
