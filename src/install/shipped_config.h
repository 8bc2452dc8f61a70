#pragma once

#include <string_view>

namespace keplo {

/// The keplo.cfg of a first install, byte for byte.
std::string_view ShippedConfig();

}  // namespace keplo
