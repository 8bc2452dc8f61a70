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

/// What a start found missing.
struct StartInstall {
  bool IsFirst = false;         // there was neither a keplo.cfg nor an event map
  std::string OfConfig, OfMap;  // where only one of them was missing: what the user should know of it
};

/// For the start of a program: brings what is missing, be it everything or what a first start was killed at.
/// @throws Failure if a file cannot be written
StartInstall CompleteInstall(const std::filesystem::path& appPath, FileSystem& files);
/// The same on the files of this machine.
StartInstall CompleteInstall(const std::filesystem::path& appPath);

}  // namespace keplo
