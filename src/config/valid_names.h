#pragma once

#include <string>

namespace keplo {

/// Trims a name in place.
/// @return whether it consists only of letters, digits, - and _, as an empty name does
bool IsValidName(std::string& name);

/// Trims a code in place.
/// @return whether it can be stored: it has at least three characters, no x or X, which stand for a half-bit
/// that could not be read, and no second G, which would separate two frames
bool IsValidCode(std::string& code);

}  // namespace keplo
