#pragma once

#include <filesystem>
#include <memory>
#include <string_view>

#include "config/file_system.h"

namespace keplo {

/// Puts new content in the place of a file, or of none, so that at any instant the old or the new file is
/// whole. A symbolic link stays and the file behind it is replaced; mode and owner stay.
/// @return the folder of the file: the new content is seen, and lasts once that folder is flushed
/// @throws Failure if a file operation fails; the old file is as it was and nothing else is left behind
[[nodiscard]] std::unique_ptr<LockedFolder> ReplaceFile(FileSystem& files, const std::filesystem::path& path,
                                                        std::string_view content);

}  // namespace keplo
