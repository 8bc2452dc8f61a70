#pragma once

#include <string>

namespace keplo::qt {

/// Shows the manual's first page in the user's browser.
/// @return why it could not be shown, for a person; empty if it is
std::string OpenManual();

/// Shows a page of the web in the user's browser.
/// @return false if no program could be started
bool OpenWebPage(const std::string& address);

}  // namespace keplo::qt
