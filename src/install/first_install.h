#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "disk/file_system.h"

namespace keplo {

/// Creates what a new application path needs: the folder, a keplo.cfg with the protocols and commands of the
/// samples, the icon, and finally a database with an empty event table. Existing files are not changed.
/// @return the names of the files that were created
/// @throws Failure if a file cannot be written
std::vector<std::string> CreateFirstInstall(const std::filesystem::path& appPath, FileSystem& files);

/// For the start of a program: creates a first install if there is neither a keplo.cfg nor an event map, and
/// completes one that was interrupted. If only one of them is missing, it was lost; creating an empty one
/// would hide that, so nothing is done, and whoever needs the file reports it.
/// @return whether anything was created
/// @throws Failure if a file cannot be written
bool CompleteInstall(const std::filesystem::path& appPath, FileSystem& files);
/// As above, with the real file system.
bool CompleteInstall(const std::filesystem::path& appPath);

}  // namespace keplo
