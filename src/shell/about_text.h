#pragma once

#include <string>

namespace keplo {

/// Four lines about the plug-in, joined by CR LF, for the Help menu item and the about box.
std::string AboutText();

}  // namespace keplo
