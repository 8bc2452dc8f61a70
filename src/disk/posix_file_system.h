#pragma once

#include <chrono>

#include "disk/file_system.h"

namespace keplo {

/// Whether a file has a name before it is published.
enum class Unpublished {
  Nameless,  // so that a killed process leaves nothing behind; falls back to Named if unsupported
  Named
};

/// A save takes tens of milliseconds; a program that locks a folder for this long is stuck.
constexpr std::chrono::milliseconds kLockTimeout{2000};

/// The real file system.
class PosixFileSystem : public FileSystem {
 public:
  /// @param lockTimeout how long to wait for another program's lock, which blocks the calling thread
  explicit PosixFileSystem(Unpublished unpublished = Unpublished::Nameless,
                           std::chrono::milliseconds lockTimeout = kLockTimeout)
      : unpublished_(unpublished), lockTimeout_(lockTimeout) {}

  std::uintmax_t Size(const std::filesystem::path& path) override;
  std::string Read(const std::filesystem::path& path, std::size_t most) override;
  std::filesystem::path Resolve(const std::filesystem::path& path) override;
  std::optional<FileIdentity> Identity(const std::filesystem::path& path) override;
  std::optional<FileAttributes> Attributes(const std::filesystem::path& path) override;
  std::unique_ptr<LockedFolder> Lock(const std::filesystem::path& folder) override;
  bool MakeFolder(const std::filesystem::path& folder) override;
  std::unique_ptr<NewFile> Create(const std::filesystem::path& path, unsigned mode) override;
  void Rename(const std::filesystem::path& from, const std::filesystem::path& to) override;
  bool RenameToFree(const std::filesystem::path& from, const std::filesystem::path& to) override;
  void Remove(const std::filesystem::path& path) override;

 private:
  Unpublished unpublished_;
  std::chrono::milliseconds lockTimeout_;
};

}  // namespace keplo
