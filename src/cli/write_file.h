#pragma once

#include <filesystem>
#include <string_view>

namespace keplo::cli {

/// Writes a file of results, in place of one that is there.
/// @throws Failure with the path if it cannot be written
void WriteFile(const std::filesystem::path& path, std::string_view content);

}  // namespace keplo::cli
