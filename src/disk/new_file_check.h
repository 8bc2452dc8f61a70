#pragma once

#include <filesystem>

namespace keplo {

/// Why no file can be made in a folder, for callers whose library does not say. Makes none that is seen.
/// @return the system's error number; 0 if a file can be made, or on a file system that cannot tell
int WhyNoNewFile(const std::filesystem::path& folder);

}  // namespace keplo
