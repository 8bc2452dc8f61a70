#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace keplo {

/// The folder that a file lies in, as the path has it.
inline std::filesystem::path FolderOf(const std::filesystem::path& file) {
  return file.has_parent_path() ? file.parent_path() : ".";
}

/// Who may do what with a file.
struct FileAttributes {
  unsigned Mode = 0;  // permission bits
  unsigned Owner = 0;
  unsigned Group = 0;
  bool Writable = true;  // by this process
};

/// Which file a path leads to, and in which state: another program that writes the file or puts another in
/// its place changes at least one of these.
struct FileIdentity {
  std::uint64_t Device = 0, Inode = 0, Size = 0;
  std::int64_t ModifiedNs = 0;  // since the epoch

  bool operator==(const FileIdentity&) const = default;
};

/// A file that is being written. It is seen in its folder at the latest when it is published, and closed when
/// the object goes.
class NewFile {
 public:
  virtual ~NewFile() = default;

  virtual void Write(std::string_view content) = 0;
  /// Takes over mode, owner and group, the latter two as far as the process may give a file away: rather an
  /// owner that has changed than a change that is not saved. Where the group stays behind, it may do no more
  /// than all others, and without the owner the file is not run in an owner's name.
  virtual void SetAttributes(const FileAttributes& attributes) = 0;
  /// Returns once the content would survive a power cut.
  virtual void Flush() = 0;
  /// Gives the file the name it was created for.
  virtual void Publish() = 0;
};

/// A folder that no other process writes to through this interface as long as the object lives.
class LockedFolder {
 public:
  virtual ~LockedFolder() = default;

  /// Returns once the names in the folder would survive a power cut.
  virtual void Flush() = 0;
};

/// The file operations of everything that is stored. All of them throw Failure with the platform's error
/// number and a text that names path and reason.
class FileSystem {
 public:
  virtual ~FileSystem() = default;

  /// Length of a regular file, bytes.
  virtual std::uintmax_t Size(const std::filesystem::path& path) = 0;
  /// The content of a regular file, at most so many bytes.
  virtual std::string Read(const std::filesystem::path& path, std::size_t most) = 0;
  /// The path that a symbolic link leads to in the end; any other path stays as it is. The file that is meant
  /// need not be there.
  virtual std::filesystem::path Resolve(const std::filesystem::path& path) = 0;
  /// The identity of what is at the path, by one system call; empty if nothing is there or it cannot be told.
  virtual std::optional<FileIdentity> Identity(const std::filesystem::path& path) = 0;
  /// The attributes of a regular file; empty if there is nothing at the path.
  virtual std::optional<FileAttributes> Attributes(const std::filesystem::path& path) = 0;
  /// Waits until the folder is free, but not so long that the program would seem to be dead.
  virtual std::unique_ptr<LockedFolder> Lock(const std::filesystem::path& folder) = 0;
  /// Makes a folder in one that is there.
  /// @return false if it is there already
  virtual bool MakeFolder(const std::filesystem::path& folder) = 0;
  /// A new file for a name that is free.
  /// @param mode permission bits, less those that the process takes off all its new files
  virtual std::unique_ptr<NewFile> Create(const std::filesystem::path& path, unsigned mode) = 0;
  /// Puts a file in the place of another, or of none, in one step.
  virtual void Rename(const std::filesystem::path& from, const std::filesystem::path& to) = 0;
  /// Gives a file another name in one step; false if that name is taken, and nothing has changed then.
  virtual bool RenameToFree(const std::filesystem::path& from, const std::filesystem::path& to) = 0;
  /// Removes a file; one that is not there is fine.
  virtual void Remove(const std::filesystem::path& path) = 0;
};

}  // namespace keplo
