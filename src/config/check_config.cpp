#include "config/check_config.h"

#include <algorithm>
#include <map>
#include <optional>
#include <vector>

#include "config/key_table.h"
#include "config/protocols.h"
#include "config/read_settings.h"
#include "config/sections.h"

namespace keplo {

namespace {

using Finding = std::optional<std::string>;

/// Number of the line that contains the character before a position.
std::string LineBefore(std::string_view text, int position) {
  return std::to_string(LineNumber(text, position - 1));
}

Finding BrokenLineEnd(std::string_view text) {
  for (std::size_t at = text.find_first_of("\r\n"); at != std::string_view::npos;
       at = text.find_first_of("\r\n", at + 2)) {
    if (text.substr(at, 2) == "\r\n") continue;
    return "line " + LineBefore(text, static_cast<int>(at) + 2) +
           " does not end in CR LF. Give all its lines these ends, as unix2dos does, and start again";
  }
  return std::nullopt;
}

Finding NotFound(std::string_view text, std::string_view what, int after) {
  std::string finding = std::string(what) + " was not found";
  if (after > 1) finding += " behind line " + LineBefore(text, after);
  return finding + ". Put it back, or bring an old copy of the file, and start again";
}

Finding MissingSetting(const CfgStore& store) {
  Settings settings;
  const SettingsReading reading = ReadSettings(store, settings);
  if (reading.Complete()) return std::nullopt;
  if (reading.Missing != "[End]") return NotFound(store.CfgText, reading.Missing, reading.After);
  return "[END] was not found. Put it back at the end ahead of any change: what stands behind the last ] is "
         "not saved";
}

/// The keys of every protocol section, in their order.
std::vector<std::string_view> ProtocolKeys() {
  std::vector<std::string_view> keys = {kDescriptionMark, kGenericKey};
  for (const ParameterKey& key : kParameterKeys) keys.push_back(key.Search);
  return keys;
}

Finding MissingKey(std::string_view text, const std::string& protocol, const Section& section) {
  const std::string_view upToNext = text.substr(0, static_cast<std::size_t>(section.End - 1));
  int position = section.Begin;
  for (const std::string_view key : ProtocolKeys()) {
    const int after = FindNoCase(key, upToNext, position);
    if (after == kNowhere) return NotFound(text, std::string(key) + " of [" + protocol + "]", position);
    position = after;
  }
  return std::nullopt;
}

/// Two sections whose names differ at most in case: every search finds only the first.
Finding DuplicateName(std::string_view text, const SectionWalk& walk) {
  std::map<std::string, std::size_t> seen;
  for (std::size_t index = 0; index < walk.Names.size(); ++index) {
    // A search for [A] finds [A]] as well.
    std::string name = walk.Names[index].substr(0, walk.Names[index].find(']'));
    std::transform(name.begin(), name.end(), name.begin(), LowerCase);
    const auto [first, isNew] = seen.emplace(std::move(name), index);
    if (isNew) continue;
    return "[" + walk.Names[first->second] + "] in line " +
           LineBefore(text, walk.Places[first->second].Begin) + " and [" + walk.Names[index] + "] in line " +
           LineBefore(text, walk.Places[index].Begin) +
           " have the same name, since upper and lower case count alike, and only the first is used. Rename "
           "one of them, and start again";
  }
  return std::nullopt;
}

/// A header that is more than a name in brackets: the name that lists show does not find the section.
Finding OddHeader(std::string_view text, const SectionWalk& walk) {
  for (std::size_t index = 0; index < walk.Names.size(); ++index) {
    const int begin = walk.Places[index].Begin;
    const auto header = [&] { return "[" + walk.Names[index] + "] in line " + LineBefore(text, begin); };
    if (walk.Names[index].find(']') != std::string::npos)
      return header() + " has something behind the ] of its name. Take it out, and start again";
    const int beforeName = begin - 3 - static_cast<int>(walk.Names[index].size());  // offset
    if (walk.Names[index].empty() || beforeName < 0) continue;
    if (text[static_cast<std::size_t>(beforeName)] == '[') continue;
    return header() + " has a blank behind its [, so that nobody finds it. Take it out, and start again";
  }
  return std::nullopt;
}

Finding DamagedSection(std::string_view text) {
  const SectionWalk walk = WalkSections(text);
  if (walk.Ended == WalkEnd::NestedHeaders) {
    return "line " + LineBefore(text, walk.Places.back().Begin) +
           " holds one [ after another, each of which would begin a section. Take them out, and start again";
  }
  if (!walk.IsWhole) return NotFound(text, "[END], in capitals,", 1);
  for (std::size_t index = 0; index < walk.Names.size(); ++index) {
    if (Finding finding = MissingKey(text, walk.Names[index], walk.Places[index])) return finding;
  }
  return std::nullopt;
}

std::string DescribeFinding(const CfgStore& store, const Finding& finding) {
  return finding ? store.Path.string() + ": " + *finding + "." : std::string();
}

Finding Damage(const CfgStore& store) {
  Finding finding = BrokenLineEnd(store.CfgText);
  if (!finding) finding = MissingSetting(store);
  if (!finding) finding = DamagedSection(store.CfgText);
  return finding;
}

}  // namespace

std::string CheckConfig(const CfgStore& store) {
  Finding finding = Damage(store);
  const SectionWalk walk = WalkSections(store.CfgText);
  if (!finding) finding = DuplicateName(store.CfgText, walk);
  if (!finding) finding = OddHeader(store.CfgText, walk);
  return DescribeFinding(store, finding);
}

std::string DamageOf(const CfgStore& store) { return DescribeFinding(store, Damage(store)); }

bool HasWholeSections(std::string_view text) { return !DamagedSection(text); }

}  // namespace keplo
