#pragma once

#include <string_view>

namespace keplo::trade {

/// The line of the first letter outside ASCII where TOML has none, 0 without one: letters as these stand in
/// quotes and comments alone, and never begin a line that a backslash has joined to the one before. The
/// parser (toml++ 3.3) has undefined behaviour there.
int LineOfStrayLetter(std::string_view text);

}  // namespace keplo::trade
