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

/// The section of a protocol; none unless a header follows it, as new commands require.
std::optional<Section> FindProtocol(std::string_view text, std::string_view protocol) {
  return FindProtocolSection(text, protocol, FindNoCase("[General]", text, 1));
}

/// Whether a code that IsValidCode accepts can begin a command line.
bool CanBeginCommandLine(std::string_view code) {
  return code.front() == 'G' && code.find_first_of(",=[]\r\n") == std::string_view::npos;
}

/// Position of the last character of a section that is not part of a line end.
int LastCharacter(std::string_view text, const Section& section) {
  return static_cast<int>(text.find_last_not_of("\r\n", static_cast<std::size_t>(section.End) - 2)) + 1;
}

/// Where to insert a new command line: after the last command of the section or, in a section without
/// commands, after its last non-empty line. None if the section is missing or that line runs into the next
/// header.
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

/// Removes the line of a command, and any SENDAS= note on its code.
Removal RemovalOf(const std::string& text, std::string_view protocol, const LineRange& line) {
  const std::string without = WithoutLine(text, line);
  Removal removal{WithoutStaleSendAs(without, protocol), line.First};
  const auto before = static_cast<std::size_t>(line.First) - 1;
  if (removal.Text.compare(0, before, without, 0, before) != 0) {
    removal.Place -= static_cast<int>(without.size() - removal.Text.size());
  }
  return removal;
}

/// The text, with the placeholder inserted at a position if its section has no commands.
std::string WithPlaceholderIfEmpty(std::string text, std::string_view protocol, int position) {
  if (CommandsIn(text, protocol) > 0) return text;
  return InsertText(text, std::string(kPlaceholderLine) + "\r\n", position);
}

/// Sets the cursors and, if necessary, the placeholder after the removal of a line.
/// @param without the text without the line, before the save
/// @param place where the line began in that text
void FinishRemoval(CfgStore& store, const std::string& without, int place) {
  // The save may have merged changes of another program, which move the place.
  const bool isSamePlace = store.CfgText.compare(0, static_cast<std::size_t>(place), without, 0,
                                                 static_cast<std::size_t>(place)) == 0;
  if (!isSamePlace) place = PlaceForCommand(store.CfgText, store.CurProtocol).value_or(kNowhere);
  CountCommands(store);
  store.CfgPos2 = place;
  if (place == kNowhere) return;
  store.ReplaceText(WithPlaceholderIfEmpty(store.CfgText, store.CurProtocol, place));
}

LearnResult Refuse(Refusal refusal, std::string_view detail = {}, std::string reason = {}) {
  return {refusal, std::string(detail), std::move(reason)};
}

/// The name of the section that contains a position; empty if there is none.
std::string_view SectionAt(std::string_view text, int position) {
  const int header = SeekBack(text, position, '[');
  return header == kNowhere ? std::string_view() : SectionNameAt(text, header + 1);
}

/// The line that contains a position, without its line end.
std::string_view LineAt(std::string_view text, int position) {
  const std::string_view upTo =
      text.substr(0, text.find_first_of("\r\n", static_cast<std::size_t>(position) - 1));
  return upTo.substr(upTo.find_last_of('\n') + 1);
}

/// Refuses a protocol without a section that can take commands.
LearnResult CheckSection(std::string_view text, std::string_view protocol) {
  return FindProtocol(text, protocol) ? LearnResult() : Refuse(Refusal::NoSection, protocol);
}

/// Refuses a command that cannot be changed.
LearnResult CheckCommand(std::string_view text, std::string_view protocol, std::string_view name) {
  LearnResult result = CheckProtocol(protocol);
  if (result.Done()) result = CheckSection(text, protocol);
  if (!result.Done()) return result;
  if (!FindCommandLine(text, protocol, name)) return Refuse(Refusal::NoSuchCommand, name);
  return IsAmbiguous(text, protocol, name) ? Refuse(Refusal::DuplicateCommand, name) : LearnResult();
}

/// Refuses a command that cannot be deleted. Of two sections with one name the user may mean the other, and a
/// deletion loses data.
LearnResult CheckCommandToDelete(std::string_view text, std::string_view protocol, std::string_view name) {
  const std::optional<Section> section = FindProtocol(text, protocol);
  const bool isDuplicate = section && FindSection(text, protocol, section->End);
  return isDuplicate ? Refuse(Refusal::DuplicateSection, protocol) : CheckCommand(text, protocol, name);
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
    case Refusal::DuplicateSection:
      return "The configuration has two sections with the name " + result.Detail +
             ", since upper and lower case count alike. Rename one of them in the file, and try again.";
    case Refusal::DuplicateCommand:
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
  if (!IsValidCode(code) || !CanBeginCommandLine(code)) return Refuse(Refusal::InvalidCode, code);
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
  const std::string text = WithSendAs(store.CfgText, protocol, code, sendAs);
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
  // The window does not refuse a missing section or command; nothing is deleted then.
  const LearnResult checked = CheckCommandToDelete(store.CfgText, store.CurProtocol, store.CurCommand);
  const bool isDuplicate =
      checked.Refused == Refusal::DuplicateSection || checked.Refused == Refusal::DuplicateCommand;
  return isDuplicate ? checked : LearnResult();
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
  store.RequireSpace(WithPlaceholderIfEmpty(without, store.CurProtocol, place).size());
  try {
    ReplaceAndSave(store, without);
  } catch (const Failure&) {
    if (store.CfgText != before) FinishRemoval(store, without, place);
    throw;
  }
  FinishRemoval(store, without, place);
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
  const std::string prepared = WithSendAs(text, protocol, checkedCode, sendAs);
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
  ReplaceAndSave(store, WithPlaceholderIfEmpty(removal.Text, protocol, removal.Place));
  return {};
}

}  // namespace keplo
