#pragma once

#include <chrono>

#include "disk/file_system.h"

namespace keplo {

/// How a file that is being written lies in its folder.
enum class Unpublished {
  Nameless,  // without a name, so that a killed process leaves nothing; named where the system cannot do that
  Named
};

/// A save takes some ten milliseconds; who holds a folder for so much longer does not go on.
constexpr std::chrono::milliseconds kLockPatience{2000};

/// The file operations of the running system.
class PosixFileSystem : public FileSystem {
 public:
  /// @param patience how long another program may hold a folder; the host's only thread waits for it
  explicit PosixFileSystem(Unpublished unpublished = Unpublished::Nameless,
                           std::chrono::milliseconds patience = kLockPatience)
      : unpublished_(unpublished), patience_(patience) {}

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
  std::chrono::milliseconds patience_;
};

}  // namespace keplo
