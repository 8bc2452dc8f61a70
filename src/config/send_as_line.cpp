#include "config/send_as_line.h"

#include <algorithm>
#include <optional>
#include <vector>

#include "config/commands.h"
#include "signal/send_as.h"

namespace keplo {

namespace {

constexpr std::string_view kSendAsKey = "SENDAS=";

/// Position just after the key; 0 if the section has none.
int KeyIn(std::string_view text, const Section& section) {
  const std::string_view upToNext = text.substr(0, static_cast<std::size_t>(section.End - 1));
  const int lastKey = FindNoCase("GREPEAT=", upToNext, section.Begin);
  return lastKey == kNowhere ? kNowhere : FindNoCase(kSendAsKey, upToNext, lastKey);
}

std::vector<std::string> WordsOf(std::string_view value) {
  std::vector<std::string> words;
  while (!value.empty()) {
    const std::string_view word = value.substr(0, value.find(' '));
    if (!word.empty()) words.emplace_back(word);
    value.remove_prefix(word.size() < value.size() ? word.size() + 1 : word.size());
  }
  return words;
}

std::string LineOf(const std::vector<std::string>& words) {
  std::string value;
  for (const std::string& word : words) value += (value.empty() ? "" : " ") + word;
  return SendAsLine(value);
}

/// The line of the key with its line end; none if it is not completely inside the section.
std::optional<LineRange> LineIn(std::string_view text, const Section& section) {
  const int key = KeyIn(text, section);
  const int lf = SeekForward(text, key, '\n');
  const int before = SeekBack(text, key, '\n');
  if (key == kNowhere || lf == kNowhere || lf >= section.End || before < section.Begin) return std::nullopt;
  return LineRange{before + 1, lf};
}

/// Where to append a line to the section; 0 if its last line runs into the next header.
int EndOfLines(std::string_view text, const Section& section) {
  const auto last = text.find_last_not_of("\r\n", static_cast<std::size_t>(section.End) - 2);
  const int lf = SeekForward(text, static_cast<int>(last) + 1, '\n');
  return lf == kNowhere || lf >= section.End ? kNowhere : lf + 1;
}

template <typename IsStale>
std::string WithoutWords(const std::string& text, std::string_view protocol, IsStale isStale) {
  const std::optional<Section> section = FindSectionToChange(text, protocol);
  const auto line = section ? LineIn(text, *section) : std::nullopt;
  if (!line) return text;
  std::vector<std::string> words = WordsOf(SendAsOf(text, *section));
  const auto stale = std::remove_if(words.begin(), words.end(), isStale);
  if (stale == words.end()) return text;
  words.erase(stale, words.end());
  return InsertText(RemoveText(text, line->First, line->Last), LineOf(words), line->First);
}

}  // namespace

std::string SendAsOf(std::string_view text, const Section& section) {
  const int key = KeyIn(text, section);
  return key == kNowhere ? std::string() : std::string(GetLineAt(text, key));
}

std::string SendAsLine(std::string_view value) {
  return value.empty() ? std::string() : std::string(kSendAsKey).append(" ").append(value).append("\r\n");
}

std::string WithSendAs(const std::string& text, std::string_view protocol, std::string_view code,
                       std::string_view way) {
  const std::optional<Section> section = FindSectionToChange(text, protocol);
  if (!section || code.empty() || FindNoCase("GREPEAT=", text, section->Begin) >= section->End) return text;
  const std::string_view digits = code.substr(1);
  const std::string value = SendAsOf(text, *section);
  if (WayOf(digits, value) == way) return text;

  std::vector<std::string> words = WordsOf(value);
  const std::vector<LearnedCommand> commands = ListCommands(text, protocol);
  const bool forAll =
      words.empty() && std::all_of(commands.begin(), commands.end(), [](const LearnedCommand& command) {
        return command.Code + "," + command.Name == kPlaceholderLine;
      });
  words.erase(std::remove_if(words.begin(), words.end(),
                             [&](const std::string& word) { return IsNoteOn(digits, word); }),
              words.end());
  if (forAll) words.emplace_back(WayOfAll(way));
  if (!forAll || IsSentFromSecond(way)) words.push_back(NoteOfWay(digits, way));
  std::string changed = text;
  if (const auto line = LineIn(text, *section)) changed = RemoveText(text, line->First, line->Last);
  const int place = EndOfLines(changed, *FindSectionToChange(changed, protocol));
  return place == kNowhere ? text : InsertText(changed, LineOf(words), place);
}

std::string WithoutStaleSendAs(const std::string& text, std::string_view protocol) {
  const std::vector<LearnedCommand> commands = ListCommands(text, protocol);
  return WithoutWords(text, protocol, [&](const std::string& word) {
    return IsNoteOfWay(word) &&
           std::none_of(commands.begin(), commands.end(), [&](const LearnedCommand& command) {
             return !command.Code.empty() && IsNoteOn(std::string_view(command.Code).substr(1), word);
           });
  });
}

std::string WithoutPeriod(const std::string& text, std::string_view protocol) {
  return WithoutWords(text, protocol, [](const std::string& word) { return PeriodOf(word) > 0; });
}

}  // namespace keplo
