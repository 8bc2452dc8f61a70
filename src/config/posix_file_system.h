#pragma once

#include "config/file_system.h"

namespace keplo {

/// How a file that is being written lies in its folder.
enum class Unpublished {
  Nameless,  // without a name, so that a killed process leaves nothing; named where the folder cannot do that
  Named
};

/// The file operations of the running system.
class PosixFileSystem : public FileSystem {
 public:
  explicit PosixFileSystem(Unpublished unpublished = Unpublished::Nameless) : unpublished_(unpublished) {}

  std::uintmax_t Size(const std::filesystem::path& path) override;
  std::string Read(const std::filesystem::path& path, std::size_t most) override;
  std::filesystem::path Resolve(const std::filesystem::path& path) override;
  std::optional<FileAttributes> Attributes(const std::filesystem::path& path) override;
  std::unique_ptr<LockedFolder> Lock(const std::filesystem::path& folder) override;
  std::unique_ptr<NewFile> Create(const std::filesystem::path& path, unsigned mode) override;
  void Rename(const std::filesystem::path& from, const std::filesystem::path& to) override;
  void Remove(const std::filesystem::path& path) override;

 private:
  Unpublished unpublished_;
};

}  // namespace keplo
