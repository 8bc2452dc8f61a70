#include "config/check_config.h"

#include <algorithm>
#include <optional>

#include "config/protocols.h"
#include "config/read_settings.h"
#include "config/sections.h"

namespace keplo {

namespace {

/// What each protocol section holds, in this order.
constexpr std::string_view kProtocolKeys[] = {
    "#", "GPROTO=", "SENDPLS=", "REPEAT=", "BITG=", "BIT0=", "BIT1=", "GREPEAT="};

using Finding = std::optional<std::string>;

/// Number of the line, from 1, in which the character ahead of a position stands.
std::string LineAhead(std::string_view text, int position) {
  const std::string_view ahead = text.substr(0, static_cast<std::size_t>(std::max(position - 2, 0)));
  return std::to_string(1 + std::count(ahead.begin(), ahead.end(), '\n'));
}

Finding BrokenLineEnd(std::string_view text) {
  for (std::size_t at = text.find_first_of("\r\n"); at != std::string_view::npos;
       at = text.find_first_of("\r\n", at + 2)) {
    if (text.substr(at, 2) == "\r\n") continue;
    return "line " + LineAhead(text, static_cast<int>(at) + 2) +
           " does not end in CR LF. Give all its lines these ends, as unix2dos does, and start again";
  }
  return std::nullopt;
}

Finding NotFound(std::string_view text, std::string_view what, int behind) {
  std::string finding = std::string(what) + " was not found";
  if (behind > 1) finding += " behind line " + LineAhead(text, behind);
  return finding + ". Put it back, or bring an old copy of the file, and start again";
}

Finding MissingSetting(const CfgStore& store) {
  Settings settings;
  const SettingsReading reading = ReadSettings(store, settings);
  if (reading.Complete()) return std::nullopt;
  if (reading.Missing != "[End]") return NotFound(store.CfgText, reading.Missing, reading.Behind);
  return "[END] was not found. Put it back at the end ahead of any change: what stands behind the last ] is "
         "not saved";
}

Finding MissingKey(std::string_view text, const std::string& protocol) {
  const std::optional<Section> section = FindSectionToChange(text, protocol);
  if (!section) return std::nullopt;
  const std::string_view upToNext = text.substr(0, static_cast<std::size_t>(section->End - 1));
  int position = section->Begin;
  for (const std::string_view key : kProtocolKeys) {
    const int behind = FindNoCase(key, upToNext, position);
    if (behind == kNowhere) return NotFound(text, std::string(key) + " of [" + protocol + "]", position);
    position = behind;
  }
  return std::nullopt;
}

Finding DamagedSection(std::string_view text) {
  const SectionWalk walk = WalkSections(text);
  if (walk.Ended != WalkEnd::ClosingHeader) return NotFound(text, "[END], in capitals,", 1);
  for (const std::string& protocol : walk.Names) {
    if (Finding finding = MissingKey(text, protocol)) return finding;
  }
  return std::nullopt;
}

}  // namespace

std::string CheckConfig(const CfgStore& store) {
  Finding finding = BrokenLineEnd(store.CfgText);
  if (!finding) finding = MissingSetting(store);
  if (!finding) finding = DamagedSection(store.CfgText);
  return finding ? store.Path.string() + ": " + *finding + "." : std::string();
}

}  // namespace keplo
