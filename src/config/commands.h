#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "config/cfg_store.h"

namespace keplo {

/// The command line of a section that has no learned commands.
constexpr std::string_view kPlaceholderLine = "G10,EMPTY";
constexpr std::string_view kPlaceholderName = "EMPTY";

/// Number of commands of CurProtocol, including the placeholder: the commas between GREPEAT and the next
/// section. 0 if the section, its GREPEAT or the next section is missing. Moves CfgPos.
int CountCommands(CfgStore& store);

/// Removes the line of CurCommand from section CurProtocol of CfgText, in memory only.
///
/// Only a complete command line of a section after [General] is removed: the first one with exactly this name
/// or, failing that, with this name in any letter case. CfgPos is then where the line began and CfgPos2 its
/// LF; if there is no such line, CfgPos is 0 and nothing is removed.
void DeleteCommandLine(CfgStore& store);

/// A command as a section's list shows it.
struct LearnedCommand {
  std::string Name;  // from after the comma to the end of the line, blanks included
  std::string Code;  // from the first character of the line, a G, to the comma
};

/// The commands of a section in the order of the file, including the placeholder. Every line with a comma
/// counts as a command. A section that is not followed by another one has none.
std::vector<LearnedCommand> ListCommands(std::string_view text, std::string_view protocol);

// Names given by a person or another program match in any letter case; if several do, an exact match wins.

/// The protocol of a name, as the text spells it; of several, the one in use.
std::optional<std::string> StoredProtocol(std::string_view text, std::string_view name);
std::optional<LearnedCommand> FindLearned(std::string_view text, std::string_view protocol,
                                          std::string_view command);

/// The code of the first command line of a section that contains the name, even as a part of a longer name.
/// Lines that are no command lines count only if no command line contains it.
/// @return G and the rest of the line up to its comma; empty if section, name or comma is missing
std::optional<std::string> ShownCode(std::string_view text, std::string_view protocol, std::string_view name);

/// The characters of a line including its line end; positions count from 1.
struct LineRange {
  int First = 0;
  int Last = 0;  // its LF
};

/// The line that DeleteCommandLine removes.
std::optional<LineRange> FindCommandLine(std::string_view text, std::string_view protocol,
                                         std::string_view name);

/// The first command line of a section that begins between the positions first and last, inclusive.
std::optional<LineRange> CommandLineWithin(std::string_view text, std::string_view protocol, int first,
                                           int last);

/// Whether a name could mean more than one of the different command lines of a section: several have exactly
/// this name, or none has and several have it in another letter case.
bool IsAmbiguous(std::string_view text, std::string_view protocol, std::string_view name);

/// The placeholder line of a section; a learned command that happens to be called EMPTY is not one.
std::optional<LineRange> FindPlaceholder(std::string_view text, std::string_view protocol);

/// What CountCommands returns, for any section after [General], without moving a cursor.
int CommandsIn(std::string_view text, std::string_view protocol);

}  // namespace keplo
