#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "config/cfg_store.h"

namespace keplo {

/// The line that stands in a section without learned commands.
constexpr std::string_view kPlaceholderLine = "G10,EMPTY";
constexpr std::string_view kPlaceholderName = "EMPTY";

/// Commands of CurProtocol, the placeholder included: the commas between GREPEAT and the next section. 0 if
/// the section, its GREPEAT or the next section is missing. Moves CfgPos.
int CountCommands(CfgStore& store);

/// Removes the line of CurCommand in section CurProtocol from CfgText, in memory only.
///
/// Only a whole command line of a section after [General] goes: the first one with exactly this name or,
/// without one, with this name in other capitals. CfgPos then stands where the line began, CfgPos2 on its LF;
/// without such a line CfgPos is 0 and nothing is removed.
void DeleteCommandLine(CfgStore& store);

/// A command as a section's list shows it.
struct LearnedCommand {
  std::string Name;  // from after the comma to the end of the line, blanks included
  std::string Code;  // from the first character of the line, a G, to the comma
};

/// The commands of a section in the order of the file, the placeholder included. Every line with a comma
/// counts as one. A section that no other one follows has none.
std::vector<LearnedCommand> ListCommands(std::string_view text, std::string_view protocol);

// Names that a person or another program gives are found in any letter case; where two differ in that alone,
// the one that is spelled like it.

/// The protocol of a name, as the text spells it; of several the one that is used.
std::optional<std::string> StoredProtocol(std::string_view text, std::string_view name);
std::optional<LearnedCommand> FindLearned(std::string_view text, std::string_view protocol,
                                          std::string_view command);

/// The code of the command line in which the name is found first after the header of the section. That is a
/// line further up if the name is a part of it. Only where no command line has it any line counts.
/// @return G and the rest of the line up to its comma; empty if section, name or comma is missing
std::optional<std::string> ShownCode(std::string_view text, std::string_view protocol, std::string_view name);

/// Characters of a line, its line end included; positions count from 1.
struct LineRange {
  int First = 0;
  int Last = 0;  // its LF
};

/// The line that DeleteCommandLine removes.
std::optional<LineRange> FindCommandLine(std::string_view text, std::string_view protocol,
                                         std::string_view name);

/// The first command line of a section that begins at one of the positions first to last.
std::optional<LineRange> CommandLineWithin(std::string_view text, std::string_view protocol, int first,
                                           int last);

/// Whether a name could mean two command lines of a section: none has exactly this name, or two that differ
/// do.
bool IsAmbiguous(std::string_view text, std::string_view protocol, std::string_view name);

/// The placeholder line of a section; a learned command of that name is none.
std::optional<LineRange> FindPlaceholder(std::string_view text, std::string_view protocol);

/// The number that CountCommands gives, for any section after [General].
int CommandsIn(std::string_view text, std::string_view protocol);

}  // namespace keplo
