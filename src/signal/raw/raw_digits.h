#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace keplo {

/// The digits that each raw command begins with. Remotes do not send them, and there is a 1 where a biphase
/// code has its toggle digit, so that no such code is taken for the beginning of a raw one.
inline constexpr std::string_view kRawHead = "101101110111";

/// A number that a text stands for, the same on every machine (FNV-1a).
std::uint64_t TextHash(std::string_view text);

/// Draws the digits of a raw command from the levels that its lengths fall into, see LeveledSignal: kRawHead,
/// 24 digits of the levels and 12 by which these can be checked.
/// @param isTaken whether another code has these digits already; others are drawn then
std::string DrawRawDigits(const std::vector<int>& levels,
                          const std::function<bool(std::string_view)>& isTaken);

/// Whether digits are those of a raw command.
bool AreRawDigits(std::string_view digits);

}  // namespace keplo
