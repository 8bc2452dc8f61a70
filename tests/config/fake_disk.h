#pragma once

#include <cerrno>
#include <map>
#include <memory>
#include <new>
#include <string>

#include "config/cfg_store.h"
#include "config/stepped_files.h"
#include "failure.h"

namespace keplo::tests {

/// What a power cut makes of the names that were not flushed.
enum class UnflushedNames { Lost, Kept };

/// Files in one folder as a disk has them: what is seen, and what a power cut leaves of it.
class MemoryFiles : public FileSystem {
 public:
  struct Inode {
    std::string Content, Flushed;
    std::uint64_t Number = 0;
  };

  std::map<std::string, std::shared_ptr<Inode>> Seen, Lasting;
  bool Writable = true;

  std::shared_ptr<Inode> Add(const Path& path, const std::string& flushed = {}) {
    return Seen[path.filename()] = std::make_shared<Inode>(Inode{flushed, flushed, ++inodes_});
  }

  std::uintmax_t Size(const Path& path) override { return Find(path)->Content.size(); }
  std::string Read(const Path& path, std::size_t most) override {
    return Find(path)->Content.substr(0, most);
  }
  Path Resolve(const Path& path) override { return path; }
  std::optional<FileIdentity> Identity(const Path& path) override {
    if (Seen.count(path.filename()) == 0) return std::nullopt;
    return FileIdentity{0, Find(path)->Number, Find(path)->Content.size(), 0};
  }
  std::optional<FileAttributes> Attributes(const Path& path) override {
    if (Seen.count(path.filename()) == 0) return std::nullopt;
    return FileAttributes{0640, 1000, 1000, Writable};
  }
  std::unique_ptr<LockedFolder> Lock(const Path& /*folder*/) override {
    return std::make_unique<Folder>(*this);
  }
  bool MakeFolder(const Path& /*folder*/) override { return false; }
  std::unique_ptr<NewFile> Create(const Path& path, unsigned /*mode*/) override {
    if (Seen.count(path.filename()) > 0) throw Failure(EEXIST, "exists");
    return std::make_unique<File>(Add(path));
  }
  void Rename(const Path& from, const Path& to) override {
    Seen[to.filename()] = Find(from);
    Seen.erase(from.filename());
  }
  bool RenameToFree(const Path& from, const Path& to) override {
    if (Seen.count(to.filename()) > 0) return false;
    Rename(from, to);
    return true;
  }
  void Remove(const Path& path) override { Seen.erase(path.filename()); }

 private:
  struct File : NewFile {
    explicit File(std::shared_ptr<Inode> inode) : Node(std::move(inode)) {}
    void Write(std::string_view content) override { Node->Content += content; }
    void SetAttributes(const FileAttributes& /*attributes*/) override {}
    void Flush() override { Node->Flushed = Node->Content; }
    void Publish() override {}
    std::shared_ptr<Inode> Node;
  };
  struct Folder : LockedFolder {
    explicit Folder(MemoryFiles& files) : Files(files) {}
    void Flush() override { Files.Lasting = Files.Seen; }
    MemoryFiles& Files;
  };

  std::shared_ptr<Inode> Find(const Path& path) const {
    const auto file = Seen.find(path.filename());
    if (file == Seen.end()) throw Failure(ENOENT, path.string());
    return file->second;
  }

  std::uint64_t inodes_ = 0;
};

/// A disk any operation of which can be made to fail.
class FakeDisk : public SteppedFiles {
 public:
  FakeDisk() : SteppedFiles(memory_) {}

  bool OutOfMemory = false;  // what fails does so for want of memory, not of a disk

  /// A flushed file.
  void Put(const std::string& name, const std::string& content) {
    memory_.Add(name, content);
    memory_.Lasting = memory_.Seen;
  }
  void ProtectFromWriting() { memory_.Writable = false; }

  /// The operation of this number fails, from 1; those after it too if the machine has gone down.
  void FailAt(int operation, bool forGood) {
    failAt_ = operation;
    forGood_ = forGood;
    operations_ = 0;
  }
  int Operations() const { return operations_; }

  void PowerCut(UnflushedNames names) {
    if (names == UnflushedNames::Lost) memory_.Seen = memory_.Lasting;
    for (auto& [name, inode] : memory_.Seen) memory_.Add(name, inode->Flushed);
    memory_.Lasting = memory_.Seen;
    failAt_ = 0;
  }

  std::map<std::string, std::string> Files() const {
    std::map<std::string, std::string> files;
    for (const auto& [name, inode] : memory_.Seen) files[name] = inode->Content;
    return files;
  }

 protected:
  void Step() override {
    ++operations_;
    if (failAt_ == 0 || (operations_ != failAt_ && !(forGood_ && operations_ > failAt_))) return;
    if (OutOfMemory) throw std::bad_alloc();
    throw Failure(EIO, "operation " + std::to_string(operations_));
  }

 private:
  MemoryFiles memory_;
  int operations_ = 0, failAt_ = 0;
  bool forGood_ = false;
};

/// A store over a file on such a disk, loaded, with a protocol and a command selected.
struct Stored {
  explicit Stored(const std::string& content, const std::string& protocol = {},
                  const std::string& command = {}) {
    Load(content);
    Store.CurProtocol = protocol;
    Store.CurCommand = command;
  }

  /// Writes the file as another program would.
  void Write(const std::string& content) { Disk.Put("keplo.cfg", content); }
  void Load(const std::string& content) {
    Write(content);
    LoadConfig(Store);
  }
  std::string File() const { return Disk.Files()["keplo.cfg"]; }

  FakeDisk Disk;
  CfgStore Store{"/home/keplo.cfg", Disk};
};

}  // namespace keplo::tests
