#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "config/cfg_store.h"
#include "signal/analysis_choice.h"

namespace keplo {

/// Why a command cannot be stored, renamed or deleted.
enum class Refusal {
  None,
  ReadOnlyProtocol,  // Template
  VirtualProtocol,   // Recorded
  NotValidated,      // the record flow has not confirmed the code
  InvalidCode,
  CodeExists,
  NoName,
  InvalidName,
  NameInUse,
  NoSection,         // no protocol section of that name, or no header after it
  DuplicateSection,  // two sections have that name, ignoring case
  NoMoreCommands,    // only the placeholder is left
  NoSuchCommand,
  DuplicateCommand  // two commands have that name, ignoring case
};

struct LearnResult {
  Refusal Refused = Refusal::None;
  std::string Detail;       // the command that already has the code; otherwise the name that was refused
  std::string Reason = {};  // a sentence saying where the code or name already is; may be empty

  bool Done() const { return Refused == Refusal::None; }
};

/// The message for the user; empty if nothing was refused.
std::string RefusalText(const LearnResult& result);

// The checks of a new command, in their order. They change nothing, but trim the code or name that they get.

/// Refuses Template and Recorded, in any letter case, whose commands cannot be changed.
LearnResult CheckProtocol(std::string_view protocol);
/// Accepts a code, with its leading G, that is valid and that no stored code begins with. A code read by the
/// second look is refused only if an equal one is stored, since FindCommand distinguishes them.
LearnResult CheckCode(std::string_view text, std::string& code, Analysis readBy = Analysis::First);
/// Accepts a name that does not occur anywhere in the section, not even inside another word.
LearnResult CheckName(std::string_view text, std::string_view protocol, std::string& name);

/// Inserts a checked command after the last one of a section and saves. The placeholder stays, see
/// DropPlaceholder. Sets NewCmdLine.
/// @param sendAs how the code is sent, see WithSendAs
/// @return false, with nothing changed, if the section is missing
/// @throws Failure if the text would exceed its limit or the save fails; CfgText then matches the file
bool StoreCommand(CfgStore& store, std::string_view protocol, std::string_view code, std::string_view name,
                  std::string_view sendAs = {});

/// The text with further command lines, each with its line end, after the last command of a section; the
/// placeholder is removed.
/// @return empty if the section is missing
std::optional<std::string> WithCommandLines(const std::string& text, std::string_view protocol,
                                            std::string_view lines);

/// Removes the placeholder from CurProtocol if the section has another command, in memory only. CurCommand
/// becomes EMPTY, unless that text occurs only in a later section.
void DropPlaceholder(CfgStore& store);

/// Whether CurCommand may be deleted from CurProtocol. Moves CfgPos.
LearnResult CheckDelete(CfgStore& store);

/// Removes CurCommand from CurProtocol and saves. If no command is left, the section gets the placeholder
/// back, in memory only. Cursors as with DeleteCommandLine, but CfgPos2 is where the line began.
/// @return false if there was no such line
/// @throws Failure if the save fails or the placeholder would not fit. If the file is unchanged, so is
/// CfgText; otherwise the placeholder is put back nevertheless.
bool RemoveCommand(CfgStore& store);

// Complete operations, for every user but the window: all checks, and one save that includes the placeholder.
// The current selection of the store is not changed.

/// @param code with its leading G; RC5 with 0 for the toggle digit
/// @param readBy as with CheckCode
/// @throws Failure as StoreCommand
LearnResult AddCommand(CfgStore& store, std::string_view protocol, std::string_view code,
                       std::string_view name, Analysis readBy = Analysis::First,
                       std::string_view sendAs = {});
/// Renames a command, which keeps its code and its position. The new name is checked like that of a new
/// command, but not compared with the old name.
/// @throws Failure as StoreCommand
LearnResult RenameCommand(CfgStore& store, std::string_view protocol, std::string_view name,
                          std::string_view newName);
/// @throws Failure as RemoveCommand
LearnResult DeleteCommand(CfgStore& store, std::string_view protocol, std::string_view name);

}  // namespace keplo
