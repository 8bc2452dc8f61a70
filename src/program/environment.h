#pragma once

#include <string>

namespace keplo {

/// The value of a variable of the environment; empty if there is none.
std::string Environment(const char* name);

/// Whether there is a display to show windows on.
bool HasDisplay();

}  // namespace keplo
