#pragma once

#include <string>
#include <vector>

#include "formats/remote.h"

namespace keplo::trade {

std::string WriteLirc(const std::vector<Remote>& remotes, std::vector<Complaint>& told);

}  // namespace keplo::trade
