#pragma once

#include <filesystem>
#include <string>

namespace keplo {

/// Looks whether a file is a whole shared object of this machine, before it is loaded: the loader maps a file
/// that was cut short and the program dies at the first access after its end.
/// @return what is wrong with it; empty if nothing
std::string WhyNotLoadable(const std::filesystem::path& file);

}  // namespace keplo
