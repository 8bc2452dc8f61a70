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

/// Gets the file that is about to be replaced and its content, while nobody else can save.
using OnOldContent = std::function<void(const std::filesystem::path& target, const std::string& old)>;

/// Puts new content in the place of a file, or of none, so that at any instant the old or the new file is
/// whole. A symbolic link stays and the file behind it is replaced; mode and owner stay.
/// @param onOld what it throws leaves the file as it was; none for a file whose old content does not matter
/// @return the folder of the file: the new content is seen, and lasts once that folder is flushed
/// @throws Failure if a file operation fails; the old file is as it was and nothing else is left behind
[[nodiscard]] std::unique_ptr<LockedFolder> ReplaceFile(FileSystem& files, const std::filesystem::path& path,
                                                        std::string_view content,
                                                        const OnOldContent& onOld = {});

/// ReplaceFile for whoever has resolved the path and locked its folder, to read the file before it is
/// replaced.
void ReplaceInLockedFolder(FileSystem& files, const std::filesystem::path& target, std::string_view content,
                           const OnOldContent& onOld = {});

/// Locks the folder of a file.
/// @throws Failure as CannotBeWritten makes it; as FileSystem::Lock gives it where another program holds the
/// folder
std::unique_ptr<LockedFolder> LockFolderOf(FileSystem& files, const std::filesystem::path& file);

/// The failure of a save: "PATH cannot be written: REASON", with the number of its cause, a system error.
Failure CannotBeWritten(const std::filesystem::path& path, const Failure& cause);

/// Removes a file on the way out of another failure, which is the one to tell.
void RemoveQuietly(FileSystem& files, const std::filesystem::path& path);

/// Puts content beside a file under the first free name FILE.other-1, FILE.other-2 and so on. For use while
/// the folder is locked.
/// @return the name
/// @throws Failure if it cannot be written
std::filesystem::path SaveConflictCopy(FileSystem& files, const std::filesystem::path& file,
                                       std::string_view content);

/// What SaveConflictCopy has put beside a file, as far as nobody has taken it away.
std::vector<std::filesystem::path> ConflictCopiesOf(FileSystem& files, const std::filesystem::path& file);

/// Brings a file that is not there yet, whole at the instant when its name is seen, and returns once it would
/// survive a power cut. It has the permissions that new files of the process have.
/// @return false if there is a file of that name, which then stays as it is
/// @throws Failure if a file operation fails; nothing is left behind unless only the last flush failed
bool CreateFile(FileSystem& files, const std::filesystem::path& path, std::string_view content);

}  // namespace keplo
