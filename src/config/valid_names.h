#pragma once

#include <string>

namespace keplo {

/// Trims the name in place and tells whether it is made of letters, digits, - and _ alone. An empty name is.
bool IsValidName(std::string& name);

/// Trims the code in place and tells whether it can be stored: three characters or more, no x or X, which
/// stand for half a bit that could not be read, and no second G, which would be a frame mark.
bool IsValidCode(std::string& code);

}  // namespace keplo
