#pragma once

#include <functional>
#include <string>
#include <string_view>

#include "config/raw_store.h"
#include "formats/remote.h"

namespace keplo {

/// The commands of a protocol section as a remote, with how the section sends them. A key that cannot be sent
/// is left without digits and lengths, and tells why.
/// @param wants by name, which commands
/// @param raw the lengths of raw commands
/// @throws Failure if the section is not whole
Remote RemoteOfSection(std::string_view text, const std::string& protocol,
                       const std::function<bool(std::string_view name)>& wants,
                       const RawStore* raw = nullptr);

}  // namespace keplo
