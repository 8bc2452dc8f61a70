#pragma once

#include <string>
#include <string_view>

#include "shell/keplo.h"

namespace keplo {

/// What the user can do about a press without a code, on the command line; empty if there is nothing.
/// @param appPath as for TypedCommand
std::string AdviceFor(Stage stage, std::string_view appPath);

/// Why a press raised no event, for the user; empty if it raised one.
std::string WhyNoEvent(const TickReport& tick);

}  // namespace keplo
