#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "signal/protocol_params.h"

namespace keplo {

/// Longest transmission that is built, slots; the widest silences that a protocol can name stay below it.
inline constexpr std::size_t kMostSlots = 500'000;

/// Builds the slots of a transmission, one character 0 or 1 a slot in time order: sync, frame and the repeats
/// that the parameters ask for.
/// @param code digits without the leading G; RC5 gets the toggle digit of this transmission at position 3, so
///        pass a copy. Other characters than 0 and 1 add nothing.
/// @param protoKind generic protocol of the code
/// @param params BitTail is set. Their SENDAS tells of RC6 and of two alternating frames.
/// @param rc5Toggle flips with each transmission of RC5, and of RC6; false at start, which makes the first
/// digit a 1
/// @throws std::length_error if the transmission would pass kMostSlots, std::invalid_argument if the code is
/// two alternating frames and the digits of the section are none of theirs; nothing is changed then
std::string BuildSendBits(std::string& code, std::int16_t protoKind, ProtocolParams& params, bool& rc5Toggle);

/// Length of a slot of what BuildSendBits gives, microseconds: SENDPLS, but for RC6 in a section of another
/// protocol, whose slots are as long as there.
std::int16_t SlotOf(std::string_view code, std::int16_t protoKind, const ProtocolParams& params);

/// The slots with silent ones after them up to a whole byte.
std::string PadToBytes(std::string slots);

/// Packs slots or samples, eight a byte, the first in the most significant bit; a last byte is filled with 0.
/// The reverse of SamplesToBits.
std::string BitsToChars(std::string_view bits);

/// What a receiver would capture of a transmission, for the waveform: each slot as samples of
/// kNominalSampleTime, and one slot of silence after it. Cut where string positions of 16 bits end.
/// @param pulse length of a slot, microseconds; below half a sample nothing is left to see
/// @return a packed capture
std::string CaptureOfSlots(std::string_view slots, std::int32_t pulse);

}  // namespace keplo
