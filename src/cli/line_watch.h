#pragma once

#include <cstdint>
#include <string>

namespace keplo::cli {

/// Shows the level of a port's line as it changes and each press as its lengths, until a signal ends the
/// program: for whoever wires a receiver.
/// @return the exit code
/// @throws Refused if the port does not open
int WatchLine(const std::string& appPathOption, std::int32_t port);

}  // namespace keplo::cli
