#pragma once

#include <functional>
#include <string>
#include <string_view>

#include "formats/remote.h"

namespace keplo {

/// The commands of a protocol section as a remote, with how the section sends them. A key that cannot be sent
/// is left without digits and lengths, and tells why.
/// @param wants by name, which commands
/// @throws Failure if the section is not whole
Remote RemoteOfSection(std::string_view text, const std::string& protocol,
                       const std::function<bool(std::string_view name)>& wants);

}  // namespace keplo
