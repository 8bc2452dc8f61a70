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

/// The most characters that a configuration may have: a position in it has to fit a signed 16-bit number.
constexpr std::size_t kMostCharacters = 32767;

/// Thrown by a save that found the file changed by another program since it was read; nothing was saved.
class ChangedElsewhere : public std::runtime_error {
 public:
  explicit ChangedElsewhere(const std::filesystem::path& file)
      : std::runtime_error(file.string() +
                           " was changed by another program meanwhile; nothing was saved. Try again.") {}
};

/// The configuration file as one text, with cursors into it and the current selection. Positions count
/// from 1.
struct CfgStore {
  /// @param path of keplo.cfg; nothing is read yet
  CfgStore(std::filesystem::path path, FileSystem& files) : Path(std::move(path)), Files(files) {}
  /// As above, with the real file system.
  explicit CfgStore(std::filesystem::path path);

  /// Replaces CfgText, in memory only.
  /// @throws Failure if the text has more than kMostCharacters; CfgText is then unchanged
  void ReplaceText(std::string text);
  /// @throws Failure if length is above kMostCharacters
  void RequireSpace(std::size_t length) const;

  std::filesystem::path Path;
  FileSystem& Files;
  /// The bytes of the file as last read or written; none before that.
  std::optional<std::string> FileText;
  /// CfgText as last read or written; where CfgText differs from it, there are unsaved changes.
  std::string SavedText;
  /// Identity of the file that FileText was read from; none after a save, until ReloadConfig has looked.
  std::optional<FileIdentity> ReadFrom;
  /// Set when a reload or a save has merged another program's changes into CfgText. Positions and lists taken
  /// from it earlier are then out of date; whoever shows them refreshes them and clears this flag.
  bool MergedOtherText = false;
  /// While an undoable change is in progress: CfgText without that change but with everything that other
  /// programs have written meanwhile. None otherwise, and if the two cannot be separated.
  std::optional<std::string> WithoutChange;
  /// Whether a save over another program's changes is refused with ChangedElsewhere. Otherwise the save goes
  /// on, and ConflictCopy is the path of a copy of the other text.
  bool RefusesOtherText = false;
  std::filesystem::path ConflictCopy;
  std::string CfgText;
  int CfgPos = 0, CfgPos2 = 0;          // scan cursors; any operation may overwrite them
  std::string CurProtocol, CurCommand;  // the last selection, from wherever it was made
  std::string NewCmdLine;               // the line or block about to be inserted
  RawStore Raw;                         // kept in step with CfgText

 private:
  CfgStore(std::filesystem::path path, std::unique_ptr<FileSystem> files);

  std::unique_ptr<FileSystem> ownFiles_;  // null if the caller owns them
};

/// Reads the file into CfgText. Its bytes are kept, but where a hand-edited key lacks the blank after its =,
/// the blank is inserted; the next save writes it to the file.
/// @throws Failure if the file cannot be read or has more than kMostCharacters; CfgText is then unchanged
void LoadConfig(CfgStore& store);

/// Whether the configuration file or a file of raw commands may have been replaced since it was read. Costs
/// one system call per file. After a save by this program it is true until ReloadConfig has looked.
bool HasFileChanged(const CfgStore& store);

/// What ReloadConfig did with another program's changes.
enum class Reload {
  NothingNew,
  TakenIn,     // CfgText has changed, and MergedOtherText is set
  Contradicts  // CfgText is unchanged; the next save resolves the conflict
};

/// Merges what another program has written to the file with the unsaved changes of this one, see
/// MergeChanges. Lengths of raw commands are reread as well, but do not count as news.
/// @throws Failure if the file cannot be read, is too long or is damaged; CfgText is then unchanged, and
/// HasFileChanged is false until the file changes again
Reload ReloadConfig(CfgStore& store);

/// Cuts CfgText after its last ], ends it with CR LF and writes it to the file. Without a ] both text and
/// file stay unchanged. A file that already holds the text is not written.
///
/// If another program has written the file meanwhile, its changes are merged, see MergeChanges, and
/// MergedOtherText is set; if this program has no changes of its own, the file is not written.
/// RefusesOtherText decides about conflicting changes.
/// @throws Failure if the file cannot be written: the old file is intact and CfgText unchanged. If only the
/// final flush of the folder fails, file and CfgText both have the new text, and the message says so.
/// @throws ChangedElsewhere if the store refuses other text
void SaveConfig(CfgStore& store);

/// Saves a text, and replaces CfgText by it once it is in the file, so that the two agree even if the save
/// fails. Otherwise like SaveConfig.
void ReplaceAndSave(CfgStore& store, std::string text);

}  // namespace keplo
