#pragma once

#include <iostream>
#include <string_view>

#include "cli/commands.h"

namespace keplo::cli {

/// Tells why nothing came of a command.
/// @return the exit code for that
inline int Refuse(std::string_view why) {
  std::cerr << "keplo: " << why << '\n';
  return kNoResult;
}

}  // namespace keplo::cli
