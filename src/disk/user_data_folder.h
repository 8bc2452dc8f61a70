#pragma once

#include <filesystem>
#include <optional>

namespace keplo {

/// The folder for the user's data: XDG_DATA_HOME, otherwise ~/.local/share. Relative paths are ignored.
/// @return none if neither XDG_DATA_HOME nor HOME is set
std::optional<std::filesystem::path> UserDataFolder();

}  // namespace keplo
