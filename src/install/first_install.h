#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "disk/file_system.h"

namespace keplo {

/// Whether a first install has come to its end, or somebody else has set the application path up. Its last
/// file tells, so that the next start completes what a first one was killed at.
bool IsSetUp(const std::filesystem::path& appPath);

/// Brings what a new application path needs: the folder, a keplo.cfg with the protocols and commands of the
/// samples, the icon, and last a database with an empty event table. What is there already stays as it is.
/// @return the names of the files that were brought
/// @throws Failure if a file cannot be written
std::vector<std::string> BringFirstInstall(const std::filesystem::path& appPath, FileSystem& files);

}  // namespace keplo
