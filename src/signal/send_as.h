#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace keplo {

// The value of SENDAS=, for codes that are sent in another way than sync, digits and repeats of a section
// say.

/// RC6: a toggle of double length behind the fourth digit, which each transmission turns over.
inline constexpr std::string_view kSendAsRc6 = "RC6";

/// The value for codes of two frames in turns.
/// @param digits of one frame
inline std::string SendInTurns(std::size_t digits) { return std::to_string(digits); }

/// Whether a code is two frames in turns, by the value of its section.
inline bool IsSentInTurns(std::string_view code, std::string_view sendAs) {
  return !code.empty() && code.size() % 2 == 0 && sendAs == SendInTurns(code.size() / 2);
}

}  // namespace keplo
