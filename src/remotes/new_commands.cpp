#include "remotes/new_commands.h"

#include <algorithm>

#include "config/carrier.h"
#include "config/cfg_store.h"
#include "config/cfg_text.h"
#include "config/protocol_edit.h"
#include "config/protocols.h"
#include "config/send_as_line.h"
#include "remotes/key_names.h"
#include "signal/send_as.h"

namespace keplo {

namespace {

std::string CodeOf(const PlannedKey& key) {
  return "G" + (key.RawDigits.empty() ? key.Digits() : key.RawDigits);
}

/// Why a key has another name than in its file; empty if it has that one.
std::string WhyRenamed(const PlannedKey& key) {
  if (!key.Key->Name) return "renamed: the file has no name for it";
  const std::string& name = *key.Key->Name;
  if (key.Name == name) return {};
  if (name.empty()) return "renamed: the file has an empty name for it";
  const std::string was = "renamed from \"" + name + "\": ";
  if (SaysNothing(name)) return was + "it has no letter or digit that a name may have";
  if (key.Name == CleanName(name)) {
    const std::string_view whole = Trimmed(name);
    const bool isCut = whole.size() > key.Name.size() && whole.starts_with(key.Name);
    return was + (isCut ? "a name has up to " + std::to_string(key.Name.size()) + " characters"
                        : "a name has letters, digits, - and _");
  }
  return was + "that would be found elsewhere in the section";
}

/// What the section is of, in words that no key's name lies in.
std::string Description(std::string_view remote, const std::vector<std::size_t>& places,
                        const std::vector<PlannedKey>& keys) {
  std::string text;
  for (const char character : remote) {
    const bool mayStand = character >= ' ' && character <= '~' && character != ',' && character != '[';
    text += mayStand ? character : ' ';
  }
  const std::string words = InLowerCase(text);
  const bool isFree = std::none_of(places.begin(), places.end(), [&](std::size_t place) {
    const std::string name = CleanName(keys[place].Key->Name.value_or(""));
    return !name.empty() && words.find(InLowerCase(name)) != std::string::npos;
  });
  return isFree && words.find("gproto=") == std::string::npos ? std::string(Trimmed(text)) : std::string();
}

/// The value of SENDAS=, with notes on the codes that are sent otherwise than it holds for all.
std::string WaysOf(const SectionSignal& section, const std::vector<std::size_t>& places,
                   const std::vector<PlannedKey>& keys) {
  std::string ways = section.Params.SENDAS;
  for (const std::size_t place : places) {
    const PlannedKey& key = keys[place];
    if (IsSentFromSecond(key.SendAs)) ways += " " + NoteOfWay(key.HeardDigits, key.SendAs);
  }
  return ways;
}

}  // namespace

std::string CommandLines(const std::string& section, std::string_view words,
                         const std::vector<std::size_t>& places, std::vector<PlannedKey>& keys) {
  std::string all(words);
  for (const std::size_t place : places) all.append("\n").append(CodeOf(keys[place]));
  // More than keplo.cfg holds need not be looked through: such a section is not stored.
  KeyNames names(std::string_view(all).substr(0, kMostCharacters));
  std::vector<std::string> given;
  for (const std::size_t place : places) {
    PlannedKey& key = keys[place];
    key.Section = section;
    key.Name = names.Next(key.Key->Name, given.size() + 1);
    const std::string why = WhyRenamed(key);
    if (!why.empty()) key.Reason += (key.Reason.empty() ? "" : "; ") + why;
    given.push_back(key.Name);
  }
  std::string lines;
  for (const std::size_t next : LinesInOrder(given)) {
    lines += CodeOf(keys[places[next]]) + "," + given[next] + "\r\n";
  }
  return lines;
}

std::string SectionBlock(const std::string& name, const KeyGroup& group, std::vector<PlannedKey>& keys) {
  const SectionSignal section = group.Group.Section();
  ProtocolDraft draft;
  draft.Name = name;
  draft.Description = Description(keys[group.Keys.front()].Remote, group.Keys, keys);
  draft.ProtoKind = section.ProtoKind;
  draft.Params = section.Params;
  const std::string head = ParameterLines(draft) + "\r\n" + SendAsLine(WaysOf(section, group.Keys, keys)) +
                           CarrierLine(section.Params.Carrier) + "\r\n";
  return "\r\n[" + name + "]\r\n" + head + CommandLines(name, head, group.Keys, keys);
}

}  // namespace keplo
