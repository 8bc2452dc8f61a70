#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace keplo {

/// The folder of a file, according to its path.
inline std::filesystem::path FolderOf(const std::filesystem::path& file) {
  return file.has_parent_path() ? file.parent_path() : ".";
}

/// Permissions and owner of a file.
struct FileAttributes {
  unsigned Mode = 0;  // permission bits
  unsigned Owner = 0;
  unsigned Group = 0;
  bool Writable = true;  // by this process
};

/// Identifies a file and its state: if another program writes or replaces the file, at least one of these
/// changes.
struct FileIdentity {
  std::uint64_t Device = 0, Inode = 0, Size = 0;
  std::int64_t ModifiedNs = 0;  // since the epoch

  bool operator==(const FileIdentity&) const = default;
};

/// A file that is being written. It may not be visible in its folder until it is published.
class NewFile {
 public:
  virtual ~NewFile() = default;

  virtual void Write(std::string_view content) = 0;
  /// Sets mode, and owner and group as far as the process is permitted to: it is better to save a change with
  /// another owner than not at all. If the group cannot be set, the group gets no more permissions than
  /// others; if the owner cannot be set, the set-user-ID bit is cleared.
  virtual void SetAttributes(const FileAttributes& attributes) = 0;
  /// Returns once the contents would survive a power cut.
  virtual void Flush() = 0;
  /// Gives the file the name that it was created for.
  virtual void Publish() = 0;
};

/// A folder that is locked during the lifetime of the object against other processes that use this interface.
class LockedFolder {
 public:
  virtual ~LockedFolder() = default;

  /// Returns once changes of names in the folder would survive a power cut.
  virtual void Flush() = 0;
};

/// The file operations for everything that is stored. All of them throw Failure with the system's error
/// number and a text with path and reason.
class FileSystem {
 public:
  virtual ~FileSystem() = default;

  /// Length of a regular file, bytes.
  virtual std::uintmax_t Size(const std::filesystem::path& path) = 0;
  /// The contents of a regular file, limited to `most` bytes.
  virtual std::string Read(const std::filesystem::path& path, std::size_t most) = 0;
  /// Follows symbolic links to the end; any other path is returned unchanged. The file need not exist.
  virtual std::filesystem::path Resolve(const std::filesystem::path& path) = 0;
  /// The identity of the file at a path; none if there is none, or it is unknown. Costs one system call.
  virtual std::optional<FileIdentity> Identity(const std::filesystem::path& path) = 0;
  /// The attributes of a regular file; none if it does not exist.
  virtual std::optional<FileAttributes> Attributes(const std::filesystem::path& path) = 0;
  /// Locks a folder. Waits if necessary, but not so long that the program would seem to hang.
  virtual std::unique_ptr<LockedFolder> Lock(const std::filesystem::path& folder) = 0;
  /// Creates a folder in an existing one.
  /// @return false if it already exists
  virtual bool MakeFolder(const std::filesystem::path& folder) = 0;
  /// Creates a file with an unused name.
  /// @param mode permission bits before the umask
  virtual std::unique_ptr<NewFile> Create(const std::filesystem::path& path, unsigned mode) = 0;
  /// Renames a file, atomically replacing an existing one.
  virtual void Rename(const std::filesystem::path& from, const std::filesystem::path& to) = 0;
  /// Renames a file atomically; false, without a change, if the new name is taken.
  virtual bool RenameToFree(const std::filesystem::path& from, const std::filesystem::path& to) = 0;
  /// Removes a file if it exists.
  virtual void Remove(const std::filesystem::path& path) = 0;
};

}  // namespace keplo
