#pragma once

#include <string_view>

namespace keplo::cli {

/// Shown instead of a protocol for raw commands.
inline constexpr std::string_view kRawKind = "RAW";

/// What can be done with a clean signal without a code; follows the reason.
inline constexpr std::string_view kRawOffer = "; keplo learn can store it as a raw command";
/// The same if there are digits, but they prove too little by themselves.
inline constexpr std::string_view kCodeOffer = "; keplo learn can store it, and once learned it is believed";

}  // namespace keplo::cli
