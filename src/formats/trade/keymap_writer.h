#pragma once

#include <string>
#include <vector>

#include "formats/remote.h"

namespace keplo::trade {

inline constexpr int kLongestKeymapLength = 65'535;  // microseconds

/// The remotes as keymaps of ir-ctl, see RemoteFormat.
std::string WriteKeymap(const std::vector<Remote>& remotes, std::vector<Complaint>& told);

}  // namespace keplo::trade
