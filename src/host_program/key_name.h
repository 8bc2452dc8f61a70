#pragma once

#include <optional>
#include <string>

namespace keplo::host {

/// Whether a name is that of a key in the kernel, rather than of a button of a mouse or joystick.
/// @param name may be null
bool IsKeyName(const char* name);

/// The code of a key with a kernel name such as KEY_VOLUMEUP; none if there is no such key.
std::optional<unsigned> KeyCodeOf(const std::string& name);

}  // namespace keplo::host
