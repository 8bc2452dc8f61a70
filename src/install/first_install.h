#pragma once

#include <filesystem>

#include "disk/file_system.h"

namespace keplo {

/// Whether somebody has set up an application path. Files of another kind may lie there already.
bool IsSetUp(const std::filesystem::path& appPath);

/// Brings what a new application path needs: the folder, a keplo.cfg with the protocols and commands of the
/// samples, the icon, and a database with an empty event table. What is there already stays as it is.
/// @return true if anything was brought
/// @throws Failure if a file cannot be written
bool BringFirstInstall(const std::filesystem::path& appPath, FileSystem& files);

}  // namespace keplo
