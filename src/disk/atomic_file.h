#pragma once

#include <filesystem>
#include <string_view>

namespace keplo {

/// Puts a file in place of another so that at any instant the old or the new one is whole; makes its folder.
/// @throws Failure with the path and the system's reason; the old file is whole then
void WriteWholeFile(const std::filesystem::path& path, std::string_view content);

}  // namespace keplo
