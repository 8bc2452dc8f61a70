#pragma once

#include <filesystem>
#include <string>

#include "program/arguments.h"

namespace keplo {

/// Adds --app-path to a command.
void AddAppPathOption(Command& command, std::string& appPath);

/// The folder of keplo.cfg and the event map: the option if it is given, otherwise KEPLO_HOME, otherwise the
/// folder keplo in the user's data folder (XDG_DATA_HOME, ~/.local/share).
/// @throws Failure if there is none of these
std::filesystem::path ResolveAppPath(const std::string& option);

/// Like ResolveAppPath, for commands that need an existing keplo.cfg.
/// @throws Failure that says how to create a first install if there is none
std::filesystem::path RequireInstall(const std::string& option);

/// Whether the option or KEPLO_HOME specifies that folder.
bool IsAppPathNamed(const std::string& option);

}  // namespace keplo
