#include "disk/replace_file.h"

#include <cerrno>
#include <system_error>

namespace keplo {

namespace {

constexpr unsigned kOwnerOnly = 0600;  // until the old mode is set
constexpr unsigned kForAll = 0666;
constexpr std::size_t kMostBytesRead = std::size_t{1} << 20;

/// A temporary name beside the target. It is always the same, so that the next save removes what a killed
/// process left behind; the lock on the folder prevents conflicts.
std::filesystem::path TemporaryName(const std::filesystem::path& target) {
  return target.parent_path() / ("." + target.filename().string() + ".new");
}

std::filesystem::path NumberedCopy(const std::filesystem::path& file, int number) {
  return file.string() + ".other-" + std::to_string(number);
}

void WriteAndPublish(FileSystem& files, const std::filesystem::path& path,
                     const std::optional<FileAttributes>& old, std::string_view content) {
  const std::unique_ptr<NewFile> file = files.Create(path, old ? kOwnerOnly : kForAll);
  file->Write(content);
  if (old) file->SetAttributes(*old);
  file->Flush();
  file->Publish();
}

/// Writes a temporary file and calls an action that moves it into place; removes it if either fails.
template <typename Action>
void WriteBeside(FileSystem& files, const std::filesystem::path& temporary,
                 const std::optional<FileAttributes>& old, std::string_view content, Action putInPlace) {
  files.Remove(temporary);
  try {
    WriteAndPublish(files, temporary, old, content);
    putInPlace();
  } catch (...) {
    RemoveQuietly(files, temporary);
    throw;
  }
}

}  // namespace

void RemoveQuietly(FileSystem& files, const std::filesystem::path& path) {
  try {
    files.Remove(path);
  } catch (...) {
    // The first failure is reported, and the next save will try again to remove the file.
  }
}

void ReplaceInLockedFolder(FileSystem& files, const std::filesystem::path& target, std::string_view content,
                           const OnOldContent& onOld) {
  const std::optional<FileAttributes> old = files.Attributes(target);
  if (old && !old->Writable) throw Failure(EACCES, target.string() + ": the file is write-protected");
  if (old && onOld) {
    if (files.Size(target) > kMostBytesRead) {
      throw Failure(EFBIG,
                    target.string() + ": another program has made it larger than a configuration can be");
    }
    onOld(target, files.Read(target, kMostBytesRead));
  }
  const std::filesystem::path temporary = TemporaryName(target);
  WriteBeside(files, temporary, old, content, [&] { files.Rename(temporary, target); });
}

std::unique_ptr<LockedFolder> ReplaceFile(FileSystem& files, const std::filesystem::path& path,
                                          std::string_view content, const OnOldContent& onOld) {
  const std::filesystem::path target = files.Resolve(path);
  std::unique_ptr<LockedFolder> folder = files.Lock(FolderOf(target));
  ReplaceInLockedFolder(files, target, content, onOld);
  return folder;
}

std::unique_ptr<LockedFolder> LockFolderOf(FileSystem& files, const std::filesystem::path& file) try {
  return files.Lock(FolderOf(file));
} catch (const Failure& failure) {
  if (failure.Number() == EWOULDBLOCK) throw;
  throw CannotBeWritten(file, failure);
}

Failure CannotBeWritten(const std::filesystem::path& path, const Failure& cause) {
  return {cause.Number(),
          path.string() + " cannot be written: " + std::generic_category().message(cause.Number())};
}

std::filesystem::path SaveConflictCopy(FileSystem& files, const std::filesystem::path& file,
                                       std::string_view content) {
  const std::filesystem::path temporary = TemporaryName(file);
  std::filesystem::path aside;
  WriteBeside(files, temporary, files.Attributes(file), content, [&] {
    int number = 0;
    do aside = NumberedCopy(file, ++number);
    while (!files.RenameToFree(temporary, aside));
  });
  return aside;
}

std::vector<std::filesystem::path> ConflictCopiesOf(FileSystem& files, const std::filesystem::path& file) {
  constexpr int kMostMissing = 50;  // consecutive numbers; the user may have removed some copies
  std::vector<std::filesystem::path> copies;
  for (int number = 1, missing = 0; missing < kMostMissing; ++number) {
    std::filesystem::path copy = NumberedCopy(file, number);
    const bool isThere = files.Identity(copy).has_value();
    missing = isThere ? 0 : missing + 1;
    if (isThere) copies.push_back(std::move(copy));
  }
  return copies;
}

bool CreateFile(FileSystem& files, const std::filesystem::path& path, std::string_view content) {
  const std::filesystem::path temporary = TemporaryName(path);
  const std::unique_ptr<LockedFolder> folder = files.Lock(FolderOf(path));
  bool created = false;
  WriteBeside(files, temporary, std::nullopt, content,
              [&] { created = files.RenameToFree(temporary, path); });
  if (created) {
    folder->Flush();
  } else {
    files.Remove(temporary);
  }
  return created;
}

}  // namespace keplo
