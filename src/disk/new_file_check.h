#pragma once

#include <filesystem>

namespace keplo {

/// Finds out why a file cannot be created in a folder, for callers whose library does not say. Creates no
/// visible file.
/// @return the system's error number; 0 if a file can be created, or the file system does not support the
/// check
int NewFileError(const std::filesystem::path& folder);

}  // namespace keplo
