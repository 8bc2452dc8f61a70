#include "cli/length_groups.h"

#include <algorithm>
#include <cmath>
#include <nlohmann/json.hpp>

namespace keplo::cli {

namespace {

constexpr std::size_t kMostGroups = 6;  // in a text; more are noise

/// @param first 0 for the marks, 1 for the spaces
std::vector<LengthGroup> EverySecondLength(const HeardLengths& heard, std::size_t first) {
  constexpr double kMinRatio = 1.25, kMinUs = 100;  // between neighbouring groups
  std::vector<double> lengths;
  for (std::size_t i = first; i < heard.Runs.size(); i += 2) lengths.push_back(heard.Us(i));
  std::sort(lengths.begin(), lengths.end());
  std::vector<LengthGroup> groups;
  double last = 0;
  for (const double length : lengths) {
    if (groups.empty() || length > std::max(last * kMinRatio, last + kMinUs)) groups.emplace_back();
    LengthGroup& group = groups.back();
    group.Us += (length - group.Us) / static_cast<double>(++group.Count);
    last = length;
  }
  return groups;
}

}  // namespace

std::vector<LengthGroup> MarkGroups(const HeardLengths& heard) { return EverySecondLength(heard, 0); }

std::vector<LengthGroup> SpaceGroups(const HeardLengths& heard) { return EverySecondLength(heard, 1); }

std::string GroupsText(const std::vector<LengthGroup>& groups) {
  std::string text;
  for (std::size_t i = 0; i < std::min(groups.size(), kMostGroups); ++i) {
    text += (i == 0 ? "" : ", ") + std::to_string(groups[i].Count) + " of ";
    text += std::to_string(std::lround(groups[i].Us)) + " us";
  }
  if (groups.size() > kMostGroups) {
    text += " and " + std::to_string(groups.size() - kMostGroups) + " other lengths";
  }
  return text.empty() ? "none" : text;
}

nlohmann::ordered_json JsonOf(const std::vector<LengthGroup>& groups) {
  auto json = nlohmann::ordered_json::array();
  for (const LengthGroup& group : groups)
    json.push_back({{"us", std::lround(group.Us)}, {"count", group.Count}});
  return json;
}

}  // namespace keplo::cli
