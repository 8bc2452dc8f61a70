#pragma once

#include <filesystem>

#include "disk/file_system.h"

namespace keplo {

/// Creates an event database with an empty event table, for a first install. The file appears complete or not
/// at all and is flushed to disk. An existing file is never replaced, nor is one created beside the journal
/// of another database. Its mode is 0666 less the umask.
/// @throws Failure with the errno and a text that names the file
void CreateEventTable(const std::filesystem::path& path, FileSystem& files);

}  // namespace keplo
