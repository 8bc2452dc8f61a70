#pragma once

#include <array>
#include <cstdint>
#include <string_view>

#include "signal/first_analysis.h"
#include "signal/rc6.h"

namespace keplo {

/// The slots with which a generic protocol is sent where no protocol section tells them, as for a recording
/// of an unknown remote. One character a slot of one base time.
struct PatternSet {
  std::int16_t ProtoKind;
  std::string_view BITG, BIT0, BIT1;
};

inline constexpr std::array<PatternSet, 4> kPatternSets = {{
    {kNec, "111111111111111100000000", "10", "1000"},
    {kSony, "1111", "01", "011"},
    {kRc5, "", "10", "01"},
    {kRc6, kRc6Leader, "01", "10"},
}};

/// @return null for a kind that has no pattern set
constexpr const PatternSet* FindPatternSet(std::int16_t protoKind) {
  for (const PatternSet& set : kPatternSets) {
    if (set.ProtoKind == protoKind) return &set;
  }
  return nullptr;
}

}  // namespace keplo
