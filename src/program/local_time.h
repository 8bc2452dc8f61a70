#pragma once

#include <string>

namespace keplo {

/// The time now in the machine's zone, ISO 8601.
std::string LocalTime();

}  // namespace keplo
