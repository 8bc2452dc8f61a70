#pragma once

#include <unistd.h>

#include <memory>

#include "disk/file_system.h"

namespace keplo::tests {

/// Files of a process that is killed ahead of the operation of a given number, from 1; a write has two
/// halves, each of which counts.
class DyingFiles : public FileSystem {
 public:
  static constexpr int kKilled = 99;  // exit code

  DyingFiles(FileSystem& files, int deadly) : files_(files), left_(deadly) {}

  std::uintmax_t Size(const std::filesystem::path& path) override { return Step().Size(path); }
  std::string Read(const std::filesystem::path& path, std::size_t most) override {
    return Step().Read(path, most);
  }
  std::filesystem::path Resolve(const std::filesystem::path& path) override { return Step().Resolve(path); }
  std::optional<FileIdentity> Identity(const std::filesystem::path& path) override {
    return files_.Identity(path);
  }
  std::optional<FileAttributes> Attributes(const std::filesystem::path& path) override {
    return Step().Attributes(path);
  }
  std::unique_ptr<LockedFolder> Lock(const std::filesystem::path& folder) override {
    return std::make_unique<Folder>(*this, Step().Lock(folder));
  }
  std::unique_ptr<NewFile> Create(const std::filesystem::path& path, unsigned mode) override {
    return std::make_unique<File>(*this, Step().Create(path, mode));
  }
  void Rename(const std::filesystem::path& from, const std::filesystem::path& to) override {
    Step().Rename(from, to);
  }
  bool RenameToFree(const std::filesystem::path& from, const std::filesystem::path& to) override {
    return Step().RenameToFree(from, to);
  }
  void Remove(const std::filesystem::path& path) override { Step().Remove(path); }

 private:
  struct Folder : LockedFolder {
    Folder(DyingFiles& files, std::unique_ptr<LockedFolder> folder) : Files(files), Real(std::move(folder)) {}
    void Flush() override {
      Files.Step();
      Real->Flush();
    }
    DyingFiles& Files;
    std::unique_ptr<LockedFolder> Real;
  };

  struct File : NewFile {
    File(DyingFiles& files, std::unique_ptr<NewFile> file) : Files(files), Real(std::move(file)) {}
    void Write(std::string_view content) override {
      for (const std::string_view half :
           {content.substr(0, content.size() / 2), content.substr(content.size() / 2)}) {
        Files.Step();
        Real->Write(half);
      }
    }
    void SetAttributes(const FileAttributes& attributes) override {
      Files.Step();
      Real->SetAttributes(attributes);
    }
    void Flush() override {
      Files.Step();
      Real->Flush();
    }
    void Publish() override {
      Files.Step();
      Real->Publish();
    }
    DyingFiles& Files;
    std::unique_ptr<NewFile> Real;
  };

  FileSystem& Step() {
    if (--left_ == 0) _exit(kKilled);
    return files_;
  }

  FileSystem& files_;
  int left_;
};

}  // namespace keplo::tests
