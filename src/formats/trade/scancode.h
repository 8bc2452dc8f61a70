#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "formats/remote.h"

namespace keplo::trade {

/// A name of the kernel's protocols as they are compared: neither letter case nor '-' and '_' count.
std::string PlainProtocol(std::string_view name);

/// Gives the key what the kernel's protocol of that name makes of a scancode.
/// @return empty, or why there is nothing
std::string TakeScancode(std::string_view protocol, std::uint64_t value, RemoteKey& key);

struct Scancode {
  std::string_view Protocol;
  std::uint64_t Value = 0;
};

/// The scancode of digits, if one of the kernel's protocols sends them.
std::optional<Scancode> ScancodeOf(const RemoteKey& key);

}  // namespace keplo::trade
