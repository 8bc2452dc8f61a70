#pragma once

#include <unistd.h>

#include <memory>

#include "disk/file_system.h"

namespace keplo::tests {

using Path = std::filesystem::path;

/// Files with a step before each operation, which may fail it or end the process. A write has two halves,
/// each of which counts.
class SteppedFiles : public FileSystem {
 public:
  explicit SteppedFiles(FileSystem& files) : files_(files) {}

  std::uintmax_t Size(const Path& path) override { return Next().Size(path); }
  std::string Read(const Path& path, std::size_t most) override { return Next().Read(path, most); }
  Path Resolve(const Path& path) override { return Next().Resolve(path); }
  std::optional<FileIdentity> Identity(const Path& path) override { return files_.Identity(path); }
  std::optional<FileAttributes> Attributes(const Path& path) override { return Next().Attributes(path); }
  std::unique_ptr<LockedFolder> Lock(const Path& folder) override {
    return std::make_unique<Folder>(*this, Next().Lock(folder));
  }
  bool MakeFolder(const Path& folder) override { return Next().MakeFolder(folder); }
  std::unique_ptr<NewFile> Create(const Path& path, unsigned mode) override {
    return std::make_unique<File>(*this, Next().Create(path, mode));
  }
  void Rename(const Path& from, const Path& to) override { Next().Rename(from, to); }
  bool RenameToFree(const Path& from, const Path& to) override { return Next().RenameToFree(from, to); }
  void Remove(const Path& path) override { Next().Remove(path); }

 protected:
  virtual void Step() = 0;

 private:
  template <typename Of>
  struct Stepped : Of {
    Stepped(SteppedFiles& files, std::unique_ptr<Of> real) : Files(files), Real(std::move(real)) {}
    void Flush() override { Next().Flush(); }
    Of& Next() {
      Files.Step();
      return *Real;
    }
    SteppedFiles& Files;
    std::unique_ptr<Of> Real;
  };
  using Folder = Stepped<LockedFolder>;
  struct File : Stepped<NewFile> {
    using Stepped::Stepped;
    void Write(std::string_view content) override {
      Next().Write(content.substr(0, content.size() / 2));
      Next().Write(content.substr(content.size() / 2));
    }
    void SetAttributes(const FileAttributes& attributes) override { Next().SetAttributes(attributes); }
    void Publish() override { Next().Publish(); }
  };

  FileSystem& Next() {
    Step();
    return files_;
  }

  FileSystem& files_;
};

/// Files of a process that is killed before the operation of a given number, from 1.
class DyingFiles : public SteppedFiles {
 public:
  static constexpr int kKilled = 99;  // exit code

  DyingFiles(FileSystem& files, int deadly) : SteppedFiles(files), left_(deadly) {}

 private:
  void Step() override {
    if (--left_ == 0) _exit(kKilled);
  }

  int left_;
};

}  // namespace keplo::tests
