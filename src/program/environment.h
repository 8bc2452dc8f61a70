#pragma once

#include <filesystem>
#include <optional>
#include <string>

namespace keplo {

/// The value of a variable of the environment; empty if there is none.
std::string Environment(const char* name);

/// Where the user's programs keep their data: XDG_DATA_HOME, else ~/.local/share. Relative paths are ignored.
/// @return none if neither it nor HOME names a folder
std::optional<std::filesystem::path> UserDataFolder();

/// Whether there is a display to show windows on.
bool HasDisplay();

}  // namespace keplo
