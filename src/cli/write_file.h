#pragma once

#include <filesystem>
#include <string_view>

namespace keplo::cli {

/// Creates or replaces a file of results.
/// @throws Failure with the path if it cannot be written
void WriteFile(const std::filesystem::path& path, std::string_view content);

}  // namespace keplo::cli
