#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "signal/pattern_sets.h"

namespace keplo {

/// A way of coding that protocols are built on, with the values that a new protocol of it starts from. Its
/// place in the table is the value of GPROTO=.
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

/// The entry of an index; an index without one counts as the first.
constexpr const GenericProtocol& GenericProtocolAt(int index) {
  return kGenericProtocols[IsGenericProtocol(index) ? static_cast<std::size_t>(index) : 0];
}

}  // namespace keplo
