#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "remotes/import_plan.h"
#include "remotes/section_signal.h"

namespace keplo {

/// Some planned keys that one section sends.
struct KeyGroup {
  SectionGroup Group;
  std::vector<std::size_t> Keys;  // places in the plan
};

/// Names the keys of a group, and puts their command lines together.
/// @param words all that stands in the section beside them
/// @return the lines, each with its line end
std::string CommandLines(const std::string& section, std::string_view words,
                         const std::vector<std::size_t>& places, std::vector<PlannedKey>& keys);

/// A new section with the commands of a group, before whose header stands an empty line.
std::string SectionBlock(const std::string& name, const KeyGroup& group, std::vector<PlannedKey>& keys);

}  // namespace keplo
