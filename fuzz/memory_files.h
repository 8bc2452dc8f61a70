#pragma once

#include <cerrno>
#include <map>
#include <string>

#include "disk/file_system.h"
#include "failure.h"

namespace keplo {

/// Files that live in memory alone, so that a fuzzer saves without a disk.
class MemoryFiles : public FileSystem {
 public:
  std::uintmax_t Size(const std::filesystem::path& path) override { return Find(path).size(); }
  std::string Read(const std::filesystem::path& path, std::size_t most) override {
    return Find(path).substr(0, most);
  }
  std::filesystem::path Resolve(const std::filesystem::path& path) override { return path; }
  std::optional<FileIdentity> Identity(const std::filesystem::path& /*path*/) override { return {}; }
  std::optional<FileAttributes> Attributes(const std::filesystem::path& path) override {
    return files_.count(path) > 0 ? std::optional(FileAttributes{}) : std::nullopt;
  }
  std::unique_ptr<LockedFolder> Lock(const std::filesystem::path& /*folder*/) override {
    return std::make_unique<Folder>();
  }
  bool MakeFolder(const std::filesystem::path& /*folder*/) override { return false; }
  std::unique_ptr<NewFile> Create(const std::filesystem::path& path, unsigned /*mode*/) override {
    return std::make_unique<File>(files_[path]);
  }
  void Rename(const std::filesystem::path& from, const std::filesystem::path& to) override {
    files_[to] = Find(from);
    files_.erase(from);
  }
  bool RenameToFree(const std::filesystem::path& from, const std::filesystem::path& to) override {
    if (files_.count(to) > 0) return false;
    Rename(from, to);
    return true;
  }
  void Remove(const std::filesystem::path& path) override { files_.erase(path); }

 private:
  struct Folder : LockedFolder {
    void Flush() override {}
  };

  struct File : NewFile {
    explicit File(std::string& content) : Content(content) {}
    void Write(std::string_view content) override { Content.append(content); }
    void SetAttributes(const FileAttributes& /*attributes*/) override {}
    void Flush() override {}
    void Publish() override {}
    std::string& Content;
  };

  std::string& Find(const std::filesystem::path& path) {
    const auto file = files_.find(path);
    if (file == files_.end()) throw Failure(ENOENT, path.string() + ": no such file");
    return file->second;
  }

  std::map<std::filesystem::path, std::string> files_;
};

}  // namespace keplo
