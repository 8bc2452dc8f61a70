#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "config/cfg_store.h"
#include "config/check_config.h"
#include "config/commands.h"
#include "config/parse_number.h"
#include "config/protocol_edit.h"
#include "config/protocols.h"
#include "config/sections.h"
#include "config/setting_keys.h"
#include "config/store_undo.h"
#include "config/valid_names.h"
#include "failure.h"
#include "memory_files.h"

namespace keplo {
namespace {

void Require(bool holds) {
  if (!holds) __builtin_trap();
}

/// The first line of a text, which goes off it.
std::string TakeLine(std::string_view& text) {
  const std::size_t length = std::min(text.find('\n'), text.size());
  const std::string line(text.substr(0, length));
  text.remove_prefix(std::min(length + 1, text.size()));
  return line;
}

/// A protocol and a setting out of the lines before a text.
struct Wishes {
  ProtocolDraft Draft;
  std::size_t Key = 0;
  std::int64_t Number = 0;
};

Wishes TakeWishes(std::string_view& text) {
  Wishes wishes;
  wishes.Draft.Name = TakeLine(text);
  wishes.Draft.Description = TakeLine(text);
  ProtocolParams& params = wishes.Draft.Params;
  params.BITG = TakeLine(text);
  params.BIT0 = TakeLine(text);
  params.BIT1 = TakeLine(text);
  const std::string numbers = TakeLine(text);
  const auto number = [&](std::size_t place) { return place < numbers.size() ? numbers[place] - '0' : 0; };
  wishes.Draft.ProtoKind = static_cast<std::int16_t>(number(0) & 3);
  params.SENDPLS = static_cast<std::int16_t>(number(1) * 100);
  params.REPEAT = static_cast<std::int16_t>(number(2) * 16);
  params.GREPEAT = static_cast<std::int16_t>(number(3) * 16 - 16);
  wishes.Key = static_cast<std::size_t>(number(4) & 255) % SettingKeys().size();
  wishes.Number = number(5);
  return wishes;
}

using Commands = std::vector<std::string>;

/// Command lines of a section as the store knows them; a key with a comma in its line is none.
Commands CommandsOf(const std::string& text, const std::string& protocol) {
  Commands lines;
  for (const LearnedCommand& command : ListCommands(text, protocol)) {
    const bool isKey = command.Code.find('=') != std::string::npos;
    if (!isKey && command.Code.substr(0, 1) == "G") lines.push_back(command.Code + "," + command.Name);
  }
  return lines;
}

/// What all changes of a whole file have in common: a refusal changes nothing, the file stays whole, no other
/// protocol loses or gains a command, and the undo brings all of it back.
void Check(const std::string& text, const std::string& protocol,
           const std::function<bool(CfgStore& store)>& change) {
  MemoryFiles files;
  CfgStore store("keplo.cfg", files);
  store.CfgText = text;
  SaveConfig(store);
  LoadConfig(store);
  SaveConfig(store);  // with the blanks that the load has written in
  const std::string before = store.CfgText;
  StoreUndo undo(store);
  undo.Begin();
  bool done = false;
  try {
    done = change(store);
  } catch (const Failure&) {
    done = false;
  }
  Require(done || store.CfgText == before);
  Require(store.CfgText == files.Read("keplo.cfg", kMostCharacters + 1));
  Require(CheckConfig(store).empty());
  for (const std::string& other : ListProtocols(before)) {
    std::string name = other;  // one with brackets in it cannot be told from a part of another header
    if (IsValidName(name) && !EqualNoCase(other, protocol))
      Require(CommandsOf(before, other) == CommandsOf(store.CfgText, other));
  }
  undo.End();
  if (undo.CanUndo()) Require(undo.Undo().empty() && store.CfgText == before);
}

/// Whether the settings stand where they belong, each in a line of its own: a key that a start-up finds in a
/// section or after another key goes with that line.
bool HasSettingsInGeneral(std::string_view text) {
  const std::optional<Section> general = FindSection(text, "General");
  return general && std::all_of(SettingKeys().begin(), SettingKeys().end(), [&](const SettingKey& key) {
           const int place = PositionOfSetting(text, key), line = place - static_cast<int>(key.Search.size());
           return (key.Late && place == kNowhere) ||
                  (line > 1 && place < general->End && text[static_cast<std::size_t>(line) - 2] == '\n');
         });
}

void ChangeAll(const std::string& text, const Wishes& wishes) {
  std::vector<std::string> names = ListProtocols(text);
  names.push_back(wishes.Draft.Name);
  const std::string& name = names[wishes.Key % names.size()];
  ProtocolDraft edited = wishes.Draft;
  edited.Name = name;
  Check(text, wishes.Draft.Name, [&](CfgStore& store) { return AddProtocol(store, wishes.Draft).Done(); });
  Check(text, "", [&](CfgStore& store) {
    const bool done = EditProtocol(store, edited).Done();
    Require(!done || LoadProtocol(store.CfgText, name).has_value());
    return done;
  });
  Check(text, name, [&](CfgStore& store) { return DeleteProtocol(store, name).Done(); });
  const SettingKey& key = SettingKeys()[wishes.Key];
  Check(text, "", [&](CfgStore& store) {
    if (!ChangeSetting(store, key, wishes.Number)) return false;
    Require(NumberRounded(SettingValue(store.CfgText, key).value_or("?")) == wishes.Number);
    return true;
  });
}

}  // namespace
}  // namespace keplo

/// Adds, changes and deletes protocols and settings of a text that passes for a whole file, with wishes out
/// of the same bytes.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  std::string_view input(reinterpret_cast<const char*>(data), size);
  const keplo::Wishes wishes = keplo::TakeWishes(input);
  if (input.size() > keplo::kMostCharacters) return 0;
  keplo::MemoryFiles files;
  keplo::CfgStore store("keplo.cfg", files);
  store.CfgText = std::string(input);
  if (keplo::CheckConfig(store).empty() && keplo::HasSettingsInGeneral(input)) {
    keplo::ChangeAll(store.CfgText, wishes);
  }
  return 0;
}
