#pragma once

#include <filesystem>
#include <string>

#include "program/arguments.h"

namespace keplo {

/// Adds --app-path to a command.
void AddAppPathOption(Command& command, std::string& appPath);

/// The folder of keplo.cfg and the event map: the option where given, else KEPLO_HOME, else the folder keplo
/// in the user's data folder (XDG_DATA_HOME, ~/.local/share).
/// @throws Failure if there is none of these
std::filesystem::path ResolveAppPath(const std::string& option);

/// The same, for commands that need what a first install brings.
/// @throws Failure that tells how to bring one if there is no keplo.cfg
std::filesystem::path RequireInstall(const std::string& option);

/// Whether the option or KEPLO_HOME names that folder.
bool IsAppPathNamed(const std::string& option);

}  // namespace keplo
