#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <iterator>
#include <string>
#include <string_view>
#include <vector>

#include "config/cfg_store.h"
#include "config/change_value.h"
#include "config/check_config.h"
#include "config/commands.h"
#include "config/learn.h"
#include "config/lookup.h"
#include "config/protocols.h"
#include "config/read_settings.h"
#include "failure.h"
#include "memory_files.h"

namespace keplo {
namespace {

// What a fuzzer would need long to hit upon.
constexpr std::string_view kHead =
    "[General]\r\nPROCDELAY= 10\r\n[NEC]\r\n# a\r\nGPROTO= 0\r\nGREPEAT= 72\r\n\r\nG10,EMPTY\r\n";

void Require(bool holds) {
  if (!holds) __builtin_trap();
}

/// Reads whatever can be read of a text: all of it stays within the text.
void ReadAll(CfgStore& store, const std::string& word) {
  Settings settings;
  ReadSettings(store, settings);
  CheckConfig(store);
  FindCommand(store.CfgText, word, 100);
  for (const std::string& protocol : ListProtocols(store.CfgText)) {
    ProtocolParams params;
    std::int16_t kind = 0;
    LoadProtocolParams(store.CfgText, protocol, params, kind);
    ListCommands(store.CfgText, protocol);
    ShownCode(store.CfgText, protocol, word);
    store.CurProtocol = protocol;
    CountCommands(store);
  }
  LookupCommand(store, word, 2);
}

using Lines = std::vector<std::string_view>;

Lines SortedLines(std::string_view text) {
  Lines lines;
  while (!text.empty()) {
    const std::size_t length = std::min(text.find('\n'), text.size() - 1) + 1;
    lines.push_back(text.substr(0, length));
    text.remove_prefix(length);
  }
  std::sort(lines.begin(), lines.end());
  return lines;
}

Lines Missing(const Lines& from, const Lines& in) {
  Lines missing;
  std::set_difference(from.begin(), from.end(), in.begin(), in.end(), std::back_inserter(missing));
  return missing;
}

/// What an operation may do to the lines of a text.
struct Change {
  std::function<void(CfgStore&)> Run;
  std::size_t Removed = 0, Added = 0;  // lines, at most
  bool CommandsAlone = true;           // a line that goes is a command
};

std::vector<Change> Changes(const std::string& protocol, const std::string& word) {
  const std::string code = "G" + word, value = word.substr(0, word.find_first_of("\r\n"));
  return {{[=](CfgStore& store) { ReplaceValueAt(store, static_cast<int>(word.size()) + 1, value); }, 1, 1,
           false},
          {[=](CfgStore& store) { SetGeneralValue(store, "PROCDELAY", value); }, 1, 1, false},
          {[=](CfgStore& store) { DeleteCommandLine(store); }, 1, 0},
          {[=](CfgStore& store) { DropPlaceholder(store); }, 1, 0},
          {[=](CfgStore& store) { RemoveCommand(store); }, 1, 1},
          {[=](CfgStore& store) { StoreCommand(store, protocol, "G10101", "FUZZ"); }, 0, 1},
          {[=](CfgStore& store) { AddCommand(store, protocol, code, "FUZZ"); }, 1, 1},
          {[=](CfgStore& store) { AddCommand(store, protocol, "G10101", word); }, 1, 1},
          {[=](CfgStore& store) { DeleteCommand(store, protocol, word); }, 1, 1}};
}

/// Runs a change on a text that a save leaves as it is. The lines around the changed one stay, and text and
/// file agree, or nothing has changed at all.
void Check(const Change& change, const std::string& text, const std::string& protocol,
           const std::string& command) {
  MemoryFiles files;
  CfgStore store("keplo.cfg", files);
  store.CfgText = text;
  store.CurProtocol = protocol;
  store.CurCommand = command;
  try {
    change.Run(store);
  } catch (const Failure&) {
    Require(store.CfgText == text);
  }
  Require(store.CfgText.size() <= kMostCharacters);
  const Lines before = SortedLines(text), after = SortedLines(store.CfgText);
  const Lines removed = Missing(before, after);
  Require(removed.size() <= change.Removed && Missing(after, before).size() <= change.Added);
  for (const std::string_view line : removed) {
    Require(!change.CommandsAlone || (line.front() == 'G' && line.find('=') > line.find(',')));
  }
  const std::size_t general = static_cast<std::size_t>(std::max(FindNoCase("[General]", text, 1), 1)) - 1;
  Require(!change.CommandsAlone || store.CfgText.compare(0, general, text, 0, general) == 0);
}

void ChangeAll(const std::string& text, const std::string& word) {
  const auto chosen = [&](std::size_t choices) {
    return word.empty() ? 0 : static_cast<unsigned char>(word.back()) % choices;
  };
  std::vector<std::string> protocols = ListProtocols(text);
  protocols.push_back(word);
  const std::string protocol = protocols[chosen(protocols.size())];
  const std::vector<LearnedCommand> commands = ListCommands(text, protocol);
  const std::string command = commands.empty() ? word : commands[chosen(commands.size())].Name;
  for (const std::string& name : {word, command}) {
    for (const Change& change : Changes(protocol, name)) Check(change, text, protocol, name);
  }
}

}  // namespace
}  // namespace keplo

/// Store operations on an arbitrary text, with a word out of the same bytes as name, code and value: whatever
/// the text is, they stay within it, it stays within its limit, and no line is lost.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view input(reinterpret_cast<const char*>(data), size);
  const std::string word(input.substr(0, std::min(input.find('\n'), std::size_t{64})));
  std::string text(input.substr(std::min(word.size() + 1, input.size())));
  if (word.size() % 2 == 1) text.insert(0, keplo::kHead);
  if (text.size() > keplo::kMostCharacters) return 0;

  keplo::MemoryFiles files;
  keplo::CfgStore store("keplo.cfg", files);
  store.CfgText = text;
  keplo::ReadAll(store, word);
  // Ends like a whole file, so that a save cuts nothing.
  text.append("\r\n[END]\r\n");
  if (text.size() <= keplo::kMostCharacters) keplo::ChangeAll(text, word);
  return 0;
}
