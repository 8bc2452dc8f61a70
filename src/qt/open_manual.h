#pragma once

#include <string>

namespace keplo::qt {

/// Opens the first page of the manual in the user's browser.
/// @return why it could not be opened, for the user; empty on success
std::string OpenManual();

/// Opens a web page in the user's browser.
/// @return false if no program could be started
bool OpenWebPage(const std::string& address);

}  // namespace keplo::qt
