#pragma once

#include <filesystem>
#include <optional>
#include <stdexcept>
#include <string>

#include "config/cfg_text.h"

namespace keplo {

class FileSystem;

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

  /// Takes over a changed text, in memory only.
  /// @throws Failure if it has more than kMostCharacters; the text is then as it was
  void ReplaceText(std::string text);
  /// @throws Failure if a text of so many characters would be above kMostCharacters
  void RequireRoom(std::size_t length) const;

  std::filesystem::path Path;
  FileSystem& Files;
  /// What the file held when it was read or written last; none ahead of that.
  std::optional<std::string> FileText;
  /// Whether a save over what another program has written meanwhile is refused with ChangedElsewhere. Else
  /// the save goes on, and KeptAside tells where the other text was put.
  bool RefusesOtherText = false;
  std::filesystem::path KeptAside;
  std::string CfgText;
  int CfgPos = 0, CfgPos2 = 0;          // scan cursors; any operation may overwrite them
  std::string CurProtocol, CurCommand;  // what was selected last, anywhere
  std::string NewCmdLine;               // the line or block about to be inserted
};

/// Reads the file into CfgText, byte for byte but for one thing: where a hand-edited key lacks the blank
/// behind its =, the blank is written in, and the next save takes it to the file.
/// @throws Failure if it cannot be read or has more than kMostCharacters; CfgText is then as it was
void LoadConfig(CfgStore& store);

/// Cuts CfgText behind its last ] and writes it to the
/// file, with CR LF behind it in both. Without a ] text and file stay as they are.
/// @throws Failure if the file cannot be written: the old file is whole and CfgText as it was. If only the
/// flush of the folder fails, at the very end, the new text is in place in both, and the message says so.
/// ChangedElsewhere where the store refuses other text.
void SaveConfig(CfgStore& store);

/// Saves a changed text and takes it over once the file has it, so that CfgText and file agree even if the
/// save fails. The rest is as with SaveConfig.
void ReplaceAndSave(CfgStore& store, std::string text);

}  // namespace keplo
