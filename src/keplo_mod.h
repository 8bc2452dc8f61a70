#pragma once

#include <string>

namespace keplo {

/// Major, minor and revision of the program, joined by points.
extern const std::string VersionText;

}  // namespace keplo
