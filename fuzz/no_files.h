#pragma once

#include <cerrno>

#include "config/file_system.h"
#include "failure.h"

namespace keplo {

/// A device that refuses everything, so that a fuzzer never touches a file.
class NoFiles : public FileSystem {
 public:
  std::uintmax_t Size(const std::filesystem::path& /*path*/) override { Refuse(); }
  std::string Read(const std::filesystem::path& /*path*/, std::size_t /*most*/) override { Refuse(); }
  std::filesystem::path Resolve(const std::filesystem::path& path) override { return path; }
  std::optional<FileAttributes> Attributes(const std::filesystem::path& /*path*/) override { return {}; }
  std::unique_ptr<LockedFolder> Lock(const std::filesystem::path& /*folder*/) override { Refuse(); }
  std::unique_ptr<NewFile> Create(const std::filesystem::path& /*path*/, unsigned /*mode*/) override {
    Refuse();
  }
  void Rename(const std::filesystem::path& /*from*/, const std::filesystem::path& /*to*/) override {
    Refuse();
  }
  void Remove(const std::filesystem::path& /*path*/) override {}

 private:
  [[noreturn]] static void Refuse() { throw Failure(EROFS, "the fuzzer has no files"); }
};

}  // namespace keplo
