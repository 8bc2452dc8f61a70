#pragma once

#include <optional>
#include <string>

namespace keplo::host {

/// Whether the kernel calls a key so; buttons of mice and joysticks have other names.
/// @param name may be null
bool IsKeyName(const char* name);

/// The code of a key by the kernel's name for it, such as KEY_VOLUMEUP; nothing for what is no name of a key.
std::optional<unsigned> KeyCodeOf(const std::string& name);

}  // namespace keplo::host
