#pragma once

#include <filesystem>
#include <string>

namespace keplo {

/// Checks that a file is a complete shared object for this machine. The system's loader would map a truncated
/// file, and the program would crash at the first access beyond its end.
/// @return what is wrong with it; empty if it is all right
std::string WhyNotLoadable(const std::filesystem::path& file);

}  // namespace keplo
