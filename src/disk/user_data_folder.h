#pragma once

#include <filesystem>
#include <optional>

namespace keplo {

/// Where the user's programs keep their data: XDG_DATA_HOME, else ~/.local/share. Relative paths are ignored.
/// @return none if neither it nor HOME names a folder
std::optional<std::filesystem::path> UserDataFolder();

}  // namespace keplo
