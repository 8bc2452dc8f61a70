#pragma once

#include <cstddef>
#include <filesystem>
#include <nlohmann/json_fwd.hpp>
#include <string>
#include <string_view>

namespace keplo {

/// Limits for a file from another program or a person. Copying or printing deeply nested objects would
/// overflow the stack.
constexpr std::size_t kMostJsonBytes = std::size_t{1} << 20;
constexpr int kMostJsonLevels = 64;

/// The contents of a regular file.
/// @throws Failure "PATH cannot be read: REASON" with the system's error number; EFBIG if it is larger than
/// kMostJsonBytes
std::string ReadJsonFile(const std::filesystem::path& path);

/// Parses a JSON object.
/// @throws Failure with a text to follow the name of the file: "is not whole JSON"
nlohmann::json ParseJsonObject(std::string_view text);

}  // namespace keplo
