#pragma once

#include <filesystem>

#include "disk/file_system.h"

namespace keplo {

/// Makes the file of an event database with an empty event table, for a first install. The file appears whole
/// or not at all, is on the disk afterwards, and never takes the place of one that exists, nor a place beside
/// which a journal of another database lies. Its mode is 0666 less the umask.
/// @throws Failure with the errno and a text that names the file
void CreateEventTable(const std::filesystem::path& path, FileSystem& files);

}  // namespace keplo
