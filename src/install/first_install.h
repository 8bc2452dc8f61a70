#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "disk/file_system.h"

namespace keplo {

/// Brings what a new application path needs: the folder, a keplo.cfg with the protocols and commands of the
/// samples, the icon, and last a database with an empty event table. What is there already stays as it is.
/// @return the names of the files that were brought
/// @throws Failure if a file cannot be written
std::vector<std::string> BringFirstInstall(const std::filesystem::path& appPath, FileSystem& files);

/// For the start of a program: brings a first install where there is neither a keplo.cfg nor an event map,
/// and completes one that was cut short. Where only one of them is missing it was lost: an empty one in its
/// place would hide that, so nothing is brought, and whoever needs it says what to do.
/// @return whether anything was brought
/// @throws Failure if a file cannot be written
bool CompleteInstall(const std::filesystem::path& appPath, FileSystem& files);
/// The same on the files of this machine.
bool CompleteInstall(const std::filesystem::path& appPath);

}  // namespace keplo
