#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "config/cfg_store.h"
#include "signal/analysis_choice.h"

namespace keplo {

/// Why a command is not stored or not deleted.
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
  NoSection,       // there is no protocol section of that name, or no header after it
  SectionTwice,    // two sections have that name, in whatever case
  NoMoreCommands,  // only the placeholder is left
  NoSuchCommand,
  CommandTwice  // two commands have that name, in whatever case
};

struct LearnResult {
  Refusal Refused = Refusal::None;
  std::string Detail;       // the name that has the code already; else the name that was refused
  std::string Reason = {};  // where a code or a name stands already, in a sentence; else empty

  bool Done() const { return Refused == Refusal::None; }
};

/// What to tell the user; empty if nothing was refused.
std::string RefusalText(const LearnResult& result);

// The checks of a new command, in their order. They change nothing but the blanks around their argument.

/// Template and Recorded, in any letter case, take no commands and give none away.
LearnResult CheckProtocol(std::string_view protocol);
/// A code with its leading G that can be stored and that no stored one begins with; of a code that the second
/// look read, none that is equal, as FindCommand tells them apart.
LearnResult CheckCode(std::string_view text, std::string& code, Analysis readBy = Analysis::First);
/// A name that occurs nowhere in the section, not even inside another word.
LearnResult CheckName(std::string_view text, std::string_view protocol, std::string& name);

/// Puts a checked command after the last one of a section and saves. The placeholder stays, see
/// DropPlaceholder. Sets NewCmdLine.
/// @return false, with nothing changed, if the section is missing
/// @throws Failure if the text would grow beyond its limit or the save fails; CfgText then agrees with the
/// file
/// @param sendAs how the code is sent, see WithWayOf
bool StoreCommand(CfgStore& store, std::string_view protocol, std::string_view code, std::string_view name,
                  std::string_view sendAs = {});

/// A text with more command lines of a section, each with its line end: they go after its last command, and
/// the placeholder goes.
/// @return empty if the section is missing
std::optional<std::string> WithCommandLines(const std::string& text, std::string_view protocol,
                                            std::string_view lines);

/// Removes the placeholder from CurProtocol once a learned command stands beside it, in memory only.
/// CurCommand becomes EMPTY, unless that text stands in a later section alone.
void DropPlaceholder(CfgStore& store);

/// Whether CurCommand may be deleted from CurProtocol. Moves CfgPos.
LearnResult CheckDelete(CfgStore& store);

/// Removes CurCommand from CurProtocol and saves. A section that is left without commands then gets the
/// placeholder back, in memory only. Cursors as with DeleteCommandLine, and CfgPos2 where the line began.
/// @return false if there was no such line
/// @throws Failure if the save fails or the placeholder would not fit; if the file has not changed, neither
/// has CfgText, and else the placeholder is back all the same
bool RemoveCommand(CfgStore& store);

// The whole of it for everyone but the window: all checks, and one save that takes the placeholder along. The
// current selection of the store stays.

/// @param code with its leading G; RC5 with 0 for the toggle digit
/// @param readBy as with CheckCode
/// @throws Failure as StoreCommand
LearnResult AddCommand(CfgStore& store, std::string_view protocol, std::string_view code,
                       std::string_view name, Analysis readBy = Analysis::First,
                       std::string_view sendAs = {});
/// Another name for a command, which keeps its code and its place. The new name is checked as that of a new
/// command, with the command itself left out of the comparison.
/// @throws Failure as StoreCommand
LearnResult RenameCommand(CfgStore& store, std::string_view protocol, std::string_view name,
                          std::string_view newName);
/// @throws Failure as RemoveCommand
LearnResult DeleteCommand(CfgStore& store, std::string_view protocol, std::string_view name);

}  // namespace keplo
