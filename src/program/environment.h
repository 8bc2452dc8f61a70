#pragma once

#include <string>

namespace keplo {

/// The value of an environment variable; empty if it is not set.
std::string Environment(const char* name);

/// Whether there is a display for windows.
bool HasDisplay();

}  // namespace keplo
