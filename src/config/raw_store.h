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

/// The code line of a raw command.
struct RawLine {
  std::string Digits, Name;
};
using RawLines = std::map<std::string, std::vector<RawLine>>;  // by section

/// The lengths of the raw commands. Their code lines are in keplo.cfg like any other; the lengths are beside
/// it in raw/SECTION.mode2.
struct RawStore {
  /// By digits: what the files hold, and recordings about to be learned. Deleted commands stay here, so that
  /// a deletion can be undone.
  std::map<std::string, RawSignal, std::less<>> Known;
  /// Holds the raw commands of CfgText.
  RawIndex Index;
  /// What is wrong with the files, in sentences for the user.
  std::vector<std::string> Damage;

  /// The file as it was when last read, and the digits that CfgText needed from it.
  struct Reading {
    std::optional<FileIdentity> From;
    std::set<std::string> Digits;

    bool operator==(const Reading&) const = default;
  };
  std::map<std::string, Reading> Readings;  // by section, of all with raw commands
};

/// Brings the index up to date with CfgText and the files. Only files that have changed, or of which CfgText
/// needs other commands, are read. Commands whose lengths cannot be read are left out and reported in Damage.
void RefreshRaw(CfgStore& store);

/// Whether a file may have been replaced since it was read; one system call per section.
bool HaveRawFilesChanged(const CfgStore& store);

/// The signal of a code with its leading G; null if it is not that of a raw command, or its lengths are lost.
const RawSignal* FindRawSignal(const CfgStore& store, std::string_view code);

/// Keeps the files of raw commands in step with a save of the text: new lengths are written and flushed
/// before the save, and those that no command uses any more are removed after it. So at any moment every code
/// line on disk has its lengths there. A crash may leave lengths without a code line; they are ignored, and
/// replaced or removed by the next change. Lengths used by a conflict copy stay as long as that copy exists.
class RawChange {
 public:
  /// Writes the new lengths, and locks the files against other programs during the lifetime of the object.
  /// Does nothing if no raw command was added or removed.
  /// @param before, after the text in the file, and the one about to be written to it
  /// @throws Failure if a file cannot be written; nothing was removed then
  RawChange(CfgStore& store, std::string_view before, std::string_view after);

  /// Removes the lengths that are no longer used, once the text is saved. A failure is ignored: unused
  /// lengths do no harm.
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
