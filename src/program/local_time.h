#pragma once

#include <string>

namespace keplo {

/// The current local time, ISO 8601.
std::string LocalTime();

}  // namespace keplo
