#pragma once

#include <cstdint>
#include <string>

namespace keplo::cli {

/// Shows level changes of a port's line, and the lengths of each press, until a signal ends the program. This
/// helps with wiring a receiver.
/// @return the exit code
/// @throws Refused if the port does not open
int WatchLine(const std::string& appPathOption, std::int32_t port);

}  // namespace keplo::cli
