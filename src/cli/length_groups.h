#pragma once

#include <cstddef>
#include <nlohmann/json_fwd.hpp>
#include <string>
#include <vector>

#include "signal/raw/raw_signal.h"

namespace keplo::cli {

/// Lengths that are nearly equal.
struct LengthGroup {
  double Us = 0;  // mean
  std::size_t Count = 0;
};

/// The lengths of the marks and of the spaces of a signal, each from the shortest to the longest.
std::vector<LengthGroup> MarkGroups(const HeardLengths& heard);
std::vector<LengthGroup> SpaceGroups(const HeardLengths& heard);

/// "12 of 560 us, 3 of 1690 us", or "none".
std::string GroupsText(const std::vector<LengthGroup>& groups);

/// An array of objects with "us" and "count".
nlohmann::ordered_json JsonOf(const std::vector<LengthGroup>& groups);

}  // namespace keplo::cli
