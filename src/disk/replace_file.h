#pragma once

#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "disk/file_system.h"
#include "failure.h"

namespace keplo {

/// Receives the path and contents of the file about to be replaced, while its folder is locked.
using OnOldContent = std::function<void(const std::filesystem::path& target, const std::string& old)>;

/// Creates or atomically replaces a file. If the path is a symbolic link, its target is replaced. Mode and
/// owner are kept.
/// @param onOld may throw to leave the file unchanged; may be empty
/// @return the folder of the file, which has to be flushed for the change to survive a power cut
/// @throws Failure if a file operation fails; the old file is unchanged, and nothing else is left behind
[[nodiscard]] std::unique_ptr<LockedFolder> ReplaceFile(FileSystem& files, const std::filesystem::path& path,
                                                        std::string_view content,
                                                        const OnOldContent& onOld = {});

/// ReplaceFile for callers that have already resolved the path and locked its folder.
void ReplaceInLockedFolder(FileSystem& files, const std::filesystem::path& target, std::string_view content,
                           const OnOldContent& onOld = {});

/// Locks the folder of a file.
/// @throws Failure as from CannotBeWritten, or from FileSystem::Lock if another program holds the lock
std::unique_ptr<LockedFolder> LockFolderOf(FileSystem& files, const std::filesystem::path& file);

/// The failure of a save: "PATH cannot be written: REASON", with the number of its cause, which is a system
/// error.
Failure CannotBeWritten(const std::filesystem::path& path, const Failure& cause);

/// Removes a file while another failure is being handled; failures are ignored.
void RemoveQuietly(FileSystem& files, const std::filesystem::path& path);

/// Saves contents beside a file under the first unused name of FILE.other-1, FILE.other-2 and so on. The
/// folder must be locked.
/// @return the path of the copy
/// @throws Failure if it cannot be written
std::filesystem::path SaveConflictCopy(FileSystem& files, const std::filesystem::path& file,
                                       std::string_view content);

/// The existing copies made by SaveConflictCopy.
std::vector<std::filesystem::path> ConflictCopiesOf(FileSystem& files, const std::filesystem::path& file);

/// Creates a file that appears complete, and returns once it would survive a power cut. It has the default
/// permissions of new files.
/// @return false, without a change, if the file already exists
/// @throws Failure if a file operation fails; nothing is left behind unless only the final flush failed
bool CreateFile(FileSystem& files, const std::filesystem::path& path, std::string_view content);

}  // namespace keplo
