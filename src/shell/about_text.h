#pragma once

#include <string>

namespace keplo {

/// The four lines about the plug-in, joined by CR LF, for the help entry and the host's about box.
std::string AboutText();

}  // namespace keplo
