#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "signal/pattern_sets.h"

namespace keplo {

/// A line code that protocols are built on, and the values that a new protocol of this kind starts with. Its
/// index in the table is the value of GPROTO=.
struct GenericProtocol {
  std::string_view Name;
  std::int16_t SENDPLS;  // microseconds
  std::int16_t REPEAT, GREPEAT;
  PatternSet Patterns;
};

inline constexpr std::array<GenericProtocol, 4> kGenericProtocols = {{
    {"NEC", 550, 50, 1, kPatternSets[0]},
    {"SONY", 550, 40, 40, kPatternSets[1]},
    {"RC5", 850, 150, 0, kPatternSets[2]},
    {"Custom", 550, 50, 1, kPatternSets[0]},
}};

constexpr bool IsGenericProtocol(int index) {
  return index >= 0 && index < static_cast<int>(kGenericProtocols.size());
}

/// The entry at an index; the first one if the index is out of range.
constexpr const GenericProtocol& GenericProtocolAt(int index) {
  return kGenericProtocols[IsGenericProtocol(index) ? static_cast<std::size_t>(index) : 0];
}

}  // namespace keplo
