#pragma once

#include <cerrno>
#include <map>
#include <memory>
#include <new>
#include <set>
#include <string>

#include "disk/file_system.h"
#include "failure.h"

namespace keplo::tests {

/// What a power cut makes of the names that were not flushed.
enum class UnflushedNames { Lost, Kept };

/// Files in one folder as a disk has them: what is seen, and what a power cut leaves of it. Any operation can
/// be made to fail; content that was not flushed does not survive a power cut.
class FakeDisk : public FileSystem {
 public:
  /// A flushed file.
  void Put(const std::string& name, const std::string& content) {
    seen_[name] = std::make_shared<Inode>(Inode{content, content});
    lasting_ = seen_;
  }

  /// The operation of this number fails, from 1; those behind it too if the machine has gone down.
  void FailAt(int operation, bool forGood) {
    failAt_ = operation;
    forGood_ = forGood;
    operations_ = 0;
  }
  int Operations() const { return operations_; }

  bool Writable = true;
  bool OutOfMemory = false;  // what fails does so for want of memory, not of a disk

  void PowerCut(UnflushedNames names) {
    if (names == UnflushedNames::Lost) seen_ = lasting_;
    for (auto& [name, inode] : seen_) inode = std::make_shared<Inode>(Inode{inode->Flushed, inode->Flushed});
    lasting_ = seen_;
    failAt_ = 0;
  }

  std::map<std::string, std::string> Files() const {
    std::map<std::string, std::string> files;
    for (const auto& [name, inode] : seen_) files[name] = inode->Content;
    return files;
  }

  std::uintmax_t Size(const std::filesystem::path& path) override {
    Step();
    return Find(path)->Content.size();
  }
  std::string Read(const std::filesystem::path& path, std::size_t most) override {
    Step();
    return Find(path)->Content.substr(0, most);
  }
  std::filesystem::path Resolve(const std::filesystem::path& path) override {
    Step();
    return path;
  }
  std::optional<FileIdentity> Identity(const std::filesystem::path& /*path*/) override { return {}; }
  std::optional<FileAttributes> Attributes(const std::filesystem::path& path) override {
    Step();
    if (seen_.count(path.filename()) == 0) return std::nullopt;
    return FileAttributes{0640, 1000, 1000, Writable};
  }
  std::unique_ptr<LockedFolder> Lock(const std::filesystem::path& /*folder*/) override {
    Step();
    return std::make_unique<Folder>(*this);
  }
  std::unique_ptr<NewFile> Create(const std::filesystem::path& path, unsigned /*mode*/) override {
    Step();
    if (seen_.count(path.filename()) > 0) throw Failure(EEXIST, "exists");
    seen_[path.filename()] = std::make_shared<Inode>();
    return std::make_unique<File>(*this, seen_[path.filename()]);
  }
  void Rename(const std::filesystem::path& from, const std::filesystem::path& to) override {
    Step();
    seen_[to.filename()] = Find(from);
    seen_.erase(from.filename());
  }
  bool RenameToFree(const std::filesystem::path& from, const std::filesystem::path& to) override {
    if (seen_.count(to.filename()) > 0) return Step(), false;
    Rename(from, to);
    return true;
  }
  void Remove(const std::filesystem::path& path) override {
    Step();
    seen_.erase(path.filename());
  }

 private:
  struct Inode {
    std::string Content, Flushed;
  };

  class File : public NewFile {
   public:
    File(FakeDisk& disk, std::shared_ptr<Inode> inode) : disk_(disk), inode_(std::move(inode)) {}
    void Write(std::string_view content) override {
      inode_->Content = content.substr(0, content.size() / 2);  // what a full disk takes
      disk_.Step();
      inode_->Content = content;
    }
    void SetAttributes(const FileAttributes& /*attributes*/) override { disk_.Step(); }
    void Flush() override {
      disk_.Step();
      inode_->Flushed = inode_->Content;
    }
    void Publish() override { disk_.Step(); }

   private:
    FakeDisk& disk_;
    std::shared_ptr<Inode> inode_;
  };

  class Folder : public LockedFolder {
   public:
    explicit Folder(FakeDisk& disk) : disk_(disk) {}
    void Flush() override {
      disk_.Step();
      disk_.lasting_ = disk_.seen_;
    }

   private:
    FakeDisk& disk_;
  };

  void Step() {
    ++operations_;
    if (failAt_ != 0 && (operations_ == failAt_ || (forGood_ && operations_ > failAt_))) {
      if (OutOfMemory) throw std::bad_alloc();
      throw Failure(EIO, "operation " + std::to_string(operations_));
    }
  }

  std::shared_ptr<Inode> Find(const std::filesystem::path& path) {
    const auto file = seen_.find(path.filename());
    if (file == seen_.end()) throw Failure(ENOENT, path.string());
    return file->second;
  }

  std::map<std::string, std::shared_ptr<Inode>> seen_, lasting_;
  int operations_ = 0, failAt_ = 0;
  bool forGood_ = false;
};

}  // namespace keplo::tests
