#include "config/commands.h"

#include <algorithm>
#include <functional>
#include <set>

#include "config/protocols.h"
#include "config/sections.h"

namespace keplo {

namespace {

std::string_view Part(std::string_view text, int first, int end) {
  return text.substr(static_cast<std::size_t>(first - 1), static_cast<std::size_t>(end - first));
}

/// Position of the first character of a line. A lone CR or LF ends a line as well; otherwise a code in a
/// damaged file would include the lines above it.
int BeginOfLine(std::string_view text, int position) {
  auto before = static_cast<std::size_t>(position - 1);  // number of characters
  while (before > 0 && text[before - 1] != '\r' && text[before - 1] != '\n') --before;
  return static_cast<int>(before) + 1;
}

/// A line of a section, without its line end.
struct Line {
  std::string_view Text;
  LineRange Range;

  /// An = before the comma makes it a key, such as "GREPEAT= 72, see below".
  bool IsCommand() const {
    const std::size_t stop = Text.find_first_of(",=");
    return Text.front() == 'G' && stop != std::string_view::npos && Text[stop] == ',';
  }
  std::string_view Name() const { return Trimmed(Text.substr(Text.find(',') + 1)); }
};

/// The first complete, non-empty line after the header of a section that satisfies a predicate.
template <typename Predicate>
std::optional<LineRange> FindLine(std::string_view text, std::string_view protocol, Predicate fits) {
  const std::optional<Section> section = FindSectionToChange(text, protocol);
  if (!section) return std::nullopt;
  int lf = SeekForward(text, section->Begin, '\n');
  while (lf != kNowhere) {
    const int first = lf + 1;
    lf = SeekForward(text, first, '\n');
    if (lf == kNowhere || lf >= section->End) break;
    std::string_view line = Part(text, first, lf);
    if (!line.empty() && line.back() == '\r') line.remove_suffix(1);
    if (!line.empty() && fits(Line{line, {first, lf}})) return LineRange{first, lf};
  }
  return std::nullopt;
}

/// The first item of exactly this name or, failing that, of this name in another letter case.
template <typename Item, typename NameOf>
std::optional<Item> FindByName(const std::vector<Item>& items, std::string_view name, NameOf nameOf) {
  const auto find = [&](const auto& equal) {
    return std::find_if(items.begin(), items.end(),
                        [&](const Item& item) { return equal(nameOf(item), Trimmed(name)); });
  };
  auto item = find(std::equal_to<std::string_view>());
  if (item == items.end()) item = find(EqualNoCase);
  return item == items.end() ? std::nullopt : std::optional(*item);
}

/// Position just after the GREPEAT of a section; 0 if it has none.
int AfterLastKey(std::string_view text, const std::optional<Section>& section) {
  return section ? FindNoCase("GREPEAT", text, section->Begin) : kNowhere;
}

int CommasUpToHeader(std::string_view text, int position) {
  const int header = SeekForward(text, position, '[');
  if (header == kNowhere) return 0;
  const std::string_view commands = Part(text, position, header);
  return static_cast<int>(std::count(commands.begin(), commands.end(), ','));
}

}  // namespace

int CountCommands(CfgStore& store) {
  store.CfgPos = AfterLastKey(store.CfgText, FindSection(store.CfgText, store.CurProtocol));
  const int count = CommasUpToHeader(store.CfgText, store.CfgPos);
  if (store.CfgPos != kNowhere) store.CfgPos = SeekForward(store.CfgText, store.CfgPos, '[');
  return count;
}

int CommandsIn(std::string_view text, std::string_view protocol) {
  return CommasUpToHeader(text, AfterLastKey(text, FindSectionToChange(text, protocol)));
}

std::optional<LineRange> FindCommandLine(std::string_view text, std::string_view protocol,
                                         std::string_view name) {
  const std::string_view wanted = Trimmed(name);
  const auto named = [&](const auto& equal) {
    return FindLine(text, protocol,
                    [&](const Line& line) { return line.IsCommand() && equal(line.Name(), wanted); });
  };
  const auto exact = named(std::equal_to<std::string_view>());
  return exact ? exact : named(EqualNoCase);
}

std::optional<std::string> StoredProtocol(std::string_view text, std::string_view name) {
  const std::vector<std::string> names = ListProtocols(text);
  const auto found = FindByName(names, name, [](const std::string& protocol) { return Trimmed(protocol); });
  if (!found) return std::nullopt;
  // Of several names that differ in case, only the first is in use; presses are reported with its spelling.
  return *std::find_if(names.begin(), names.end(),
                       [&](const std::string& protocol) { return EqualNoCase(protocol, *found); });
}

std::optional<LearnedCommand> FindLearned(std::string_view text, std::string_view protocol,
                                          std::string_view command) {
  const std::string stored = StoredProtocol(text, protocol).value_or(std::string(protocol));
  return FindByName(ListCommands(text, stored), command,
                    [](const LearnedCommand& learned) { return Trimmed(learned.Name); });
}

std::optional<LineRange> CommandLineWithin(std::string_view text, std::string_view protocol, int first,
                                           int last) {
  return FindLine(text, protocol, [&](const Line& line) {
    return line.IsCommand() && line.Range.First >= first && line.Range.First <= last;
  });
}

bool IsAmbiguous(std::string_view text, std::string_view protocol, std::string_view name) {
  const std::string_view wanted = Trimmed(name);
  std::set<std::string_view> exact, similar;
  // Never satisfied, so that every line is visited.
  FindLine(text, protocol, [&](const Line& line) {
    if (!line.IsCommand()) return false;
    if (line.Name() == wanted) exact.insert(line.Text);
    if (EqualNoCase(line.Name(), wanted)) similar.insert(line.Text);
    return false;
  });
  return exact.empty() ? similar.size() > 1 : exact.size() > 1;
}

std::optional<LineRange> FindPlaceholder(std::string_view text, std::string_view protocol) {
  return FindLine(text, protocol, [](const Line& line) { return line.Text == kPlaceholderLine; });
}

void DeleteCommandLine(CfgStore& store) {
  const std::optional<LineRange> line = FindCommandLine(store.CfgText, store.CurProtocol, store.CurCommand);
  store.CfgPos = line ? line->First : kNowhere;
  if (!line) return;
  store.CfgPos2 = line->Last;
  store.ReplaceText(RemoveText(store.CfgText, line->First, line->Last));
}

std::vector<LearnedCommand> ListCommands(std::string_view text, std::string_view protocol) {
  std::vector<LearnedCommand> commands;
  const std::optional<Section> section = FindSection(text, protocol);
  if (!section || !section->Closed) return commands;
  int comma = SeekForward(text, section->Begin, ',');
  while (comma != kNowhere && comma < section->End) {
    const int cr = SeekForward(text, comma, '\r');
    const int end = cr == kNowhere ? section->End : cr;
    const int first = BeginOfLine(text, comma);
    commands.push_back({std::string(Part(text, comma + 1, end)), std::string(Part(text, first, comma))});
    comma = SeekForward(text, end, ',');
  }
  return commands;
}

std::optional<std::string> ShownCode(std::string_view text, std::string_view protocol,
                                     std::string_view name) {
  const std::optional<LineRange> line = FindLine(text, protocol, [&](const Line& candidate) {
    // Includes the line end, since a search never matches at the last character of a text.
    const std::string_view whole = Part(text, candidate.Range.First, candidate.Range.Last + 1);
    return candidate.IsCommand() && FindNoCase(name, whole, 1) != kNowhere;
  });
  if (line) return std::string(Part(text, line->First, SeekForward(text, line->First, ',')));
  const std::optional<Section> section = FindSection(text, protocol);
  const int match = section ? FindNoCase(name, text, section->Begin) : kNowhere;
  const int second = match == kNowhere ? kNowhere : SeekBack(text, match, '\n') + 2;
  const int comma = SeekForward(text, second, ',');
  if (comma == kNowhere) return std::nullopt;
  return "G" + std::string(Part(text, second, comma));
}

}  // namespace keplo
