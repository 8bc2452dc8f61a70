#pragma once

#include <cstddef>
#include <filesystem>
#include <nlohmann/json_fwd.hpp>
#include <string>
#include <string_view>

namespace keplo {

/// Limits of a file that another program or a person may have written. Objects nested without end would take
/// the stack of whoever copies or prints them.
constexpr std::size_t kMostJsonBytes = std::size_t{1} << 20;
constexpr int kMostJsonLevels = 64;

/// The content of a regular file.
/// @throws Failure "PATH cannot be read: REASON" with the system's number; EFBIG for a file beyond
/// kMostJsonBytes
std::string ReadJsonFile(const std::filesystem::path& path);

/// @return the object that a text is
/// @throws Failure with what the text is instead, to follow the name of the file: "is not whole JSON"
nlohmann::json ParseJsonObject(std::string_view text);

}  // namespace keplo
