#include "config/learn.h"

#include <optional>

#include "config/commands.h"
#include "config/lookup.h"
#include "config/sections.h"
#include "config/send_as_line.h"
#include "config/valid_names.h"
#include "failure.h"

namespace keplo {

namespace {

/// The section of a protocol with a header after it, as new commands need it.
std::optional<Section> FindProtocol(std::string_view text, std::string_view protocol) {
  return FindProtocolSection(text, protocol, FindNoCase("[General]", text, 1));
}

/// Codes that pass the check of a code and would still not make a command line.
bool MakesCommandLine(std::string_view code) {
  return code.front() == 'G' && code.find_first_of(",=[]\r\n") == std::string_view::npos;
}

/// Position of the last character of a section that is no line end.
int LastCharacter(std::string_view text, const Section& section) {
  return static_cast<int>(text.find_last_not_of("\r\n", static_cast<std::size_t>(section.End) - 2)) + 1;
}

/// Where a new command line goes: after the last command of the section; in a section without one, after
/// its last line that is not empty. Empty if the section is missing or that line runs into the next header.
std::optional<int> PlaceForCommand(std::string_view text, std::string_view protocol) {
  const std::optional<Section> section = FindProtocol(text, protocol);
  if (!section) return std::nullopt;
  const int lastKey = FindNoCase("GREPEAT", text, section->Begin);
  const int commands = lastKey != kNowhere && lastKey < section->End ? lastKey : section->Begin;
  const int comma = SeekBack(text, section->End, ',');
  const int lf = SeekForward(text, comma < commands ? LastCharacter(text, *section) : comma, '\n');
  return lf == kNowhere || lf > section->End ? std::nullopt : std::optional(lf + 1);
}

std::string CommandLine(std::string_view code, std::string_view name) {
  return std::string(code).append(",").append(name).append("\r\n");
}

std::string WithoutLine(std::string_view text, const LineRange& line) {
  return RemoveText(text, line.First, line.Last);
}

struct Removal {
  std::string Text;
  int Place = kNowhere;  // where the line began
};

/// Without the line of a command, and without what the section tells of its code alone.
Removal RemovalOf(const std::string& text, std::string_view protocol, const LineRange& line) {
  const std::string without = WithoutLine(text, line);
  Removal removal{WithoutStaleWays(without, protocol), line.First};
  const auto ahead = static_cast<std::size_t>(line.First) - 1;
  if (removal.Text.compare(0, ahead, without, 0, ahead) != 0) {
    removal.Place -= static_cast<int>(without.size() - removal.Text.size());
  }
  return removal;
}

/// The text with the placeholder at a position if its section has no commands.
std::string WithNeededPlaceholder(std::string text, std::string_view protocol, int position) {
  if (CommandsIn(text, protocol) > 0) return text;
  return InsertText(text, std::string(kPlaceholderLine) + "\r\n", position);
}

/// Cursors and placeholder after the removal of a line, with the text that the removal was to leave.
/// @param place where the line began in that text
void SettleRemoval(CfgStore& store, const std::string& without, int place) {
  // With the changes of another program in it the text has the place elsewhere.
  const bool isAlone = store.CfgText.compare(0, static_cast<std::size_t>(place), without, 0,
                                             static_cast<std::size_t>(place)) == 0;
  if (!isAlone) place = PlaceForCommand(store.CfgText, store.CurProtocol).value_or(kNowhere);
  CountCommands(store);
  store.CfgPos2 = place;
  if (place == kNowhere) return;
  store.ReplaceText(WithNeededPlaceholder(store.CfgText, store.CurProtocol, place));
}

LearnResult Refuse(Refusal refusal, std::string_view detail = {}, std::string reason = {}) {
  return {refusal, std::string(detail), std::move(reason)};
}

/// The name of the section that a position lies in; empty for none.
std::string_view SectionAt(std::string_view text, int position) {
  const int header = SeekBack(text, position, '[');
  return header == kNowhere ? std::string_view() : SectionNameAt(text, header + 1);
}

/// The line that a position lies in, without its end.
std::string_view LineAt(std::string_view text, int position) {
  const std::string_view upTo =
      text.substr(0, text.find_first_of("\r\n", static_cast<std::size_t>(position) - 1));
  return upTo.substr(upTo.find_last_of('\n') + 1);
}

/// Whether there is a section that takes commands; of several it is the first.
LearnResult CheckSection(std::string_view text, std::string_view protocol) {
  return FindProtocol(text, protocol) ? LearnResult() : Refuse(Refusal::NoSection, protocol);
}

/// The line of a command that may be changed: one of its own, and not the placeholder's.
LearnResult CheckCommand(std::string_view text, std::string_view protocol, std::string_view name) {
  LearnResult result = CheckProtocol(protocol);
  if (result.Done()) result = CheckSection(text, protocol);
  if (!result.Done()) return result;
  if (!FindCommandLine(text, protocol, name)) return Refuse(Refusal::NoSuchCommand, name);
  return IsAmbiguous(text, protocol, name) ? Refuse(Refusal::CommandTwice, name) : LearnResult();
}

/// The same for a command that is to be deleted: of two sections with one name the other may be meant, and
/// what is gone is gone.
LearnResult CheckCommandToDelete(std::string_view text, std::string_view protocol, std::string_view name) {
  const std::optional<Section> section = FindProtocol(text, protocol);
  const bool hasTwin = section && FindSection(text, protocol, section->End);
  return hasTwin ? Refuse(Refusal::SectionTwice, protocol) : CheckCommand(text, protocol, name);
}

}  // namespace

std::string RefusalText(const LearnResult& result) {
  switch (result.Refused) {
    case Refusal::None:
      break;
    case Refusal::ReadOnlyProtocol:
      return "This protocol is read-only.";
    case Refusal::VirtualProtocol:
      return "This is a virtual read-only protocol!";
    case Refusal::NotValidated:
      return "The command is not yet validated. Pres again Record button to validate";
    case Refusal::InvalidCode:
      return "The code you want to save is invalid.";
    case Refusal::CodeExists:
      return "This command exist as " + result.Detail;
    case Refusal::NoName:
      return "A new command needs a name.";
    case Refusal::InvalidName:
      return "Use only a-z, A-Z,'-','_' characters";
    case Refusal::NameInUse:
      return "This command name is in use for the current protocol.";
    case Refusal::NoSection:
      if (result.Detail.empty()) return "Choose a protocol first.";
      return "The configuration has no whole section of a protocol " + result.Detail + ".";
    case Refusal::SectionTwice:
      return "The configuration has two sections with the name " + result.Detail +
             ", since upper and lower case count alike. Rename one of them in the file, and try again.";
    case Refusal::CommandTwice:
      return "The protocol has two commands with the name " + result.Detail +
             ". Rename one of them in the file, and try again.";
    case Refusal::NoMoreCommands:
      return "There are no more commands to delete";
    case Refusal::NoSuchCommand:
      return "The protocol has no command " + result.Detail + ".";
  }
  return {};
}

LearnResult CheckProtocol(std::string_view protocol) {
  if (IsTemplate(protocol)) return Refuse(Refusal::ReadOnlyProtocol, protocol);
  if (IsRecorded(protocol)) return Refuse(Refusal::VirtualProtocol, protocol);
  return {};
}

LearnResult CheckCode(std::string_view text, std::string& code, Analysis readBy) {
  if (!IsValidCode(code) || !MakesCommandLine(code)) return Refuse(Refusal::InvalidCode, code);
  const bool whole = readBy == Analysis::Second;
  const int match = FindNoCase(whole ? code + ',' : code, text, 1);
  if (match == kNowhere) return {};
  const int comma = SeekForward(text, whole ? match - 1 : match, ',');
  return Refuse(Refusal::CodeExists, comma == kNowhere ? std::string_view() : GetLineAt(text, comma + 1),
                "It is a command of the protocol " + std::string(SectionAt(text, match)) + ".");
}

LearnResult CheckName(std::string_view text, std::string_view protocol, std::string& name) {
  if (name.empty()) return Refuse(Refusal::NoName);
  if (!IsValidName(name)) return Refuse(Refusal::InvalidName, name);
  LearnResult result = CheckSection(text, protocol);
  if (!result.Done()) return result;
  if (!PlaceForCommand(text, protocol)) return Refuse(Refusal::NoSection, protocol);
  const std::optional<Section> section = FindProtocol(text, protocol);
  const int match = FindNoCase(name, text, section->Begin);
  if (match == kNowhere || match > section->End) return {};
  return Refuse(Refusal::NameInUse, name,
                name + " stands in the line \"" + std::string(LineAt(text, match - 1)) + "\" already.");
}

bool StoreCommand(CfgStore& store, std::string_view protocol, std::string_view code, std::string_view name,
                  std::string_view sendAs) {
  const std::string text = WithWayOf(store.CfgText, protocol, code, sendAs);
  const std::optional<int> place = PlaceForCommand(text, protocol);
  if (!place) return false;
  store.NewCmdLine = CommandLine(code, name);
  ReplaceAndSave(store, InsertText(text, store.NewCmdLine, *place));
  return true;
}

std::optional<std::string> WithCommandLines(const std::string& text, std::string_view protocol,
                                            std::string_view lines) {
  const std::optional<int> place = PlaceForCommand(text, protocol);
  if (!place) return std::nullopt;
  std::string changed = InsertText(text, lines, *place);
  const auto placeholder = FindPlaceholder(changed, protocol);
  return placeholder ? WithoutLine(changed, *placeholder) : changed;
}

void DropPlaceholder(CfgStore& store) {
  if (CountCommands(store) < 2) return;
  const std::optional<Section> section = FindSectionToChange(store.CfgText, store.CurProtocol);
  if (!section) return;
  store.CfgPos = section->Begin;
  store.CfgPos2 = section->End + 1;
  if (FindNoCase(kPlaceholderName, store.CfgText, store.CfgPos) >= store.CfgPos2) return;
  store.CurCommand = kPlaceholderName;
  const std::optional<LineRange> line = FindPlaceholder(store.CfgText, store.CurProtocol);
  store.CfgPos = line ? line->First : kNowhere;
  if (!line) return;
  store.CfgPos2 = line->Last;
  store.ReplaceText(WithoutLine(store.CfgText, *line));
}

LearnResult CheckDelete(CfgStore& store) {
  LearnResult refused = CheckProtocol(store.CurProtocol);
  if (!refused.Done()) return refused;
  if (store.CurCommand == kPlaceholderName && CountCommands(store) == 1) {
    return Refuse(Refusal::NoMoreCommands, store.CurCommand);
  }
  // A section or command that is not there is none of the window's refusals: nothing is deleted then.
  const LearnResult checked = CheckCommandToDelete(store.CfgText, store.CurProtocol, store.CurCommand);
  const bool twice = checked.Refused == Refusal::SectionTwice || checked.Refused == Refusal::CommandTwice;
  return twice ? checked : LearnResult();
}

bool RemoveCommand(CfgStore& store) {
  const std::optional<LineRange> line = FindCommandLine(store.CfgText, store.CurProtocol, store.CurCommand);
  if (!line) {
    store.CfgPos = store.CfgPos2 = kNowhere;
    SaveConfig(store);
    return false;
  }
  const std::string before = store.CfgText;
  const auto [without, place] = RemovalOf(before, store.CurProtocol, *line);
  store.RequireSpace(WithNeededPlaceholder(without, store.CurProtocol, place).size());
  try {
    ReplaceAndSave(store, without);
  } catch (const Failure&) {
    if (store.CfgText != before) SettleRemoval(store, without, place);
    throw;
  }
  SettleRemoval(store, without, place);
  return true;
}

LearnResult AddCommand(CfgStore& store, std::string_view protocol, std::string_view code,
                       std::string_view name, Analysis readBy, std::string_view sendAs) {
  const std::string& text = store.CfgText;
  std::string checkedCode(code), checkedName(name);
  LearnResult result = CheckProtocol(protocol);
  if (result.Done()) result = CheckCode(text, checkedCode, readBy);
  if (result.Done()) result = CheckName(text, protocol, checkedName);
  if (!result.Done()) return result;
  const std::string prepared = WithWayOf(text, protocol, checkedCode, sendAs);
  ReplaceAndSave(store, *WithCommandLines(prepared, protocol, CommandLine(checkedCode, checkedName)));
  return {};
}

LearnResult RenameCommand(CfgStore& store, std::string_view protocol, std::string_view name,
                          std::string_view newName) {
  const std::string& text = store.CfgText;
  LearnResult result = CheckCommand(text, protocol, name);
  if (!result.Done()) return result;
  const std::optional<LineRange> line = FindCommandLine(text, protocol, name);
  const std::optional<LineRange> placeholder = FindPlaceholder(text, protocol);
  if (placeholder && placeholder->First == line->First) return Refuse(Refusal::NoSuchCommand, name);
  std::string checkedName(newName);
  result = CheckName(WithoutLine(text, *line), protocol, checkedName);
  if (!result.Done()) return result;
  const int comma = SeekForward(text, line->First, ',');
  ReplaceAndSave(store, InsertText(RemoveText(text, comma + 1, line->Last), checkedName + "\r\n", comma + 1));
  return {};
}

LearnResult DeleteCommand(CfgStore& store, std::string_view protocol, std::string_view name) {
  LearnResult result = CheckCommandToDelete(store.CfgText, protocol, name);
  if (!result.Done()) return result;
  const std::optional<LineRange> line = FindCommandLine(store.CfgText, protocol, name);
  const std::optional<LineRange> placeholder = FindPlaceholder(store.CfgText, protocol);
  if (placeholder && placeholder->First == line->First && CommandsIn(store.CfgText, protocol) == 1) {
    return Refuse(Refusal::NoMoreCommands, name);
  }
  const Removal removal = RemovalOf(store.CfgText, protocol, *line);
  ReplaceAndSave(store, WithNeededPlaceholder(removal.Text, protocol, removal.Place));
  return {};
}

}  // namespace keplo
