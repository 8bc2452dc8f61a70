#pragma once

#include <string_view>

namespace keplo::cli {

/// What stands for the protocol of a raw command.
inline constexpr std::string_view kRawKind = "RAW";

/// What can be done with a clean signal that no code was read of; follows the reason.
inline constexpr std::string_view kRawOffer = "; keplo learn can store it as a raw command";
/// The same with digits that prove too little by themselves.
inline constexpr std::string_view kCodeOffer = "; keplo learn can store it, and once learned it is believed";

}  // namespace keplo::cli
