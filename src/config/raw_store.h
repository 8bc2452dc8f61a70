#pragma once

#include <filesystem>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "disk/file_system.h"
#include "signal/raw/raw_index.h"
#include "signal/raw/raw_signal.h"

namespace keplo {

struct CfgStore;

/// A raw command as a text has it.
struct RawLine {
  std::string Digits, Name;
};
using RawLines = std::map<std::string, std::vector<RawLine>>;  // by section

/// The lengths of the raw commands. Their code lines stand in keplo.cfg like any other, and the lengths of a
/// section's commands in raw/SECTION.mode2 beside it.
struct RawStore {
  /// By digits: what the files held, and what was recorded to be learned. Commands that are deleted stay, so
  /// that a deletion can be taken back.
  std::map<std::string, RawSignal, std::less<>> Known;
  /// Of the commands that the text has.
  RawIndex Index;
  /// What is wrong with the files, a sentence for a person each.
  std::vector<std::string> Damage;

  /// A file as it was when it was read, and what the text asked of it.
  struct Reading {
    std::optional<FileIdentity> From;
    std::set<std::string> Digits;

    bool operator==(const Reading&) const = default;
  };
  std::map<std::string, Reading> Readings;  // by section, of all that have raw commands
};

/// Brings the index in step with CfgText and the files; reads those files that have changed or that the text
/// has other commands of. What cannot be read costs the commands that it is about, and is told in Damage.
void RefreshRaw(CfgStore& store);

/// Whether another file may stand in the place of one that was read, by one system call for each section.
bool HaveRawFilesChanged(const CfgStore& store);

/// The signal of a code with its leading G; null if it is none of a raw command, or its lengths are lost.
const RawSignal* FindRawSignal(const CfgStore& store, std::string_view code);

/// A change of the raw commands of a text, in step with its save: before it the new lengths are written and
/// made to last, and after it those are removed that no command has any more. So at any instant each code
/// line that is on the disk has its lengths there; what a crash may leave is lengths without a line, which
/// count for nothing, give way to new ones of the same digits and go with the next change. Lengths of the
/// commands of a text that was put aside stay as long as that text does.
class RawChange {
 public:
  /// Writes what is new and keeps other programs from the files while the object lives. Without a raw command
  /// that comes or goes nothing is done.
  /// @param before, after the text that the file has, and that it is about to have
  /// @throws Failure if a file cannot be written; nothing was taken away then
  RawChange(CfgStore& store, std::string_view before, std::string_view after);

  /// Removes what the text has no command for, now that it is saved for good. A failure leaves lengths that
  /// count for nothing, and is none of the change's.
  void DropLost() noexcept;

 private:
  struct File {
    std::string Protocol;
    std::filesystem::path Path;
    std::set<std::string> Had, Wanted;  // digits, before and after
  };

  void AddNew(const File& file);
  void DropLost(const File& file, const RawLines& aside);

  CfgStore& store_;
  std::vector<File> files_;
  std::unique_ptr<LockedFolder> folder_;
};

}  // namespace keplo
