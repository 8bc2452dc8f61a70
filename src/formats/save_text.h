#pragma once

#include <string>
#include <string_view>

namespace keplo {

/// Puts a text of a format into the file that a user has picked, in place of one that is there.
/// @param advice what the user can do if that fails, a sentence
/// @throws Failure with the path, the reason and the advice if it cannot be written
void SaveText(const std::string& path, std::string_view text, const std::string& advice);

}  // namespace keplo
