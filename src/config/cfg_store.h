#pragma once

#include <filesystem>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>

#include "config/cfg_text.h"
#include "config/raw_store.h"
#include "disk/file_system.h"

namespace keplo {

/// Characters that a configuration text holds at most: positions in it are those of 16-bit signed numbers.
constexpr std::size_t kMostCharacters = 32767;

/// Another program has written the file since it was read; nothing was saved.
class ChangedElsewhere : public std::runtime_error {
 public:
  explicit ChangedElsewhere(const std::filesystem::path& file)
      : std::runtime_error(file.string() +
                           " was changed by another program meanwhile; nothing was saved. Try again.") {}
};

/// The configuration file as one text, and the current places and names in it. Positions count from 1.
struct CfgStore {
  /// @param path of keplo.cfg; nothing is read yet
  CfgStore(std::filesystem::path path, FileSystem& files) : Path(std::move(path)), Files(files) {}
  /// The same on the files of this machine.
  explicit CfgStore(std::filesystem::path path);

  /// Takes over a changed text, in memory only.
  /// @throws Failure if it has more than kMostCharacters; the text is then as it was
  void ReplaceText(std::string text);
  /// @throws Failure if a text of so many characters would be above kMostCharacters
  void RequireSpace(std::size_t length) const;

  std::filesystem::path Path;
  FileSystem& Files;
  /// What the file held when it was read or written last; none before that.
  std::optional<std::string> FileText;
  /// CfgText as it was read or written last: what differs from it is unsaved.
  std::string SavedText;
  /// The file that FileText was read from; none after a save, until somebody looks again.
  std::optional<FileIdentity> ReadFrom;
  /// Set when a reload or a save has taken in what another program had written. Positions and lists that were
  /// taken from CfgText before are then out of date; whoever shows them takes them again and clears this.
  bool TookInOtherText = false;
  /// While a change is made that the user can take back: what CfgText would be without it, with all that
  /// other programs have written meanwhile. None at other times, and where the two cannot be told apart.
  std::optional<std::string> WithoutChange;
  /// Whether a save over what another program has written meanwhile is refused with ChangedElsewhere. Else
  /// the save goes on, and ConflictCopy tells where the other text was put.
  bool RefusesOtherText = false;
  std::filesystem::path ConflictCopy;
  std::string CfgText;
  int CfgPos = 0, CfgPos2 = 0;          // scan cursors; any operation may overwrite them
  std::string CurProtocol, CurCommand;  // what was selected last, anywhere
  std::string NewCmdLine;               // the line or block about to be inserted
  RawStore Raw;                         // follows CfgText as it is read and saved

 private:
  CfgStore(std::filesystem::path path, std::unique_ptr<FileSystem> files);

  std::unique_ptr<FileSystem> ownFiles_;  // null if they are somebody else's
};

/// Reads the file into CfgText, byte for byte but for one thing: where a hand-edited key lacks the blank
/// after its =, the blank is written in, and the next save takes it to the file.
/// @throws Failure if it cannot be read or has more than kMostCharacters; CfgText is then as it was
void LoadConfig(CfgStore& store);

/// Whether another file may stand at the path than the one that was read, or in the place of a file of raw
/// commands, by one system call each. After a save of this program it says yes once, until ReloadConfig has
/// looked.
bool HasFileChanged(const CfgStore& store);

/// What became of another program's text.
enum class Reload {
  NothingNew,
  TakenIn,     // CfgText has changed, and TookInOtherText is set
  Contradicts  // all of CfgText stays, and the next save deals with it
};

/// Takes in what another program has written to the file. What this program has changed and not saved yet is
/// kept, by MergeChanges. Lengths of raw commands are taken in too, and are no news.
/// @throws Failure if the file cannot be read, is too long, or is not whole; CfgText is then as it was, and
/// HasFileChanged says no until the file changes again
Reload ReloadConfig(CfgStore& store);

/// Cuts CfgText after its last ] and writes it to the file, with CR LF after it in both. Without a ] text and
/// file stay as they are. A file that holds the text already is not written.
///
/// Where another program has written the file meanwhile, its changes are taken in, see MergeChanges, and
/// TookInOtherText is set; a text without changes of this program leaves such a file as it is. Changes that
/// contradict each other are settled by RefusesOtherText.
/// @throws Failure if the file cannot be written: the old file is whole and CfgText as it was. If only the
/// flush of the folder fails, at the very end, the new text is in place in both, and the message says so.
/// ChangedElsewhere where the store refuses other text.
void SaveConfig(CfgStore& store);

/// Saves a changed text and takes it over once the file has it, so that CfgText and file agree even if the
/// save fails. The rest is as with SaveConfig.
void ReplaceAndSave(CfgStore& store, std::string text);

}  // namespace keplo
