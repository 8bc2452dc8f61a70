#include "config/setting_keys.h"

#include <algorithm>
#include <array>

#include "config/change_value.h"
#include "config/protocols.h"
#include "config/sections.h"

namespace keplo {

namespace {

/// Whether a section begins in the line of a value. Replacing the value would remove the header, and a line
/// inserted below would be in that section.
bool HasHeader(std::string_view text, int position) {
  return GetLineAt(text, position).find('[') != std::string_view::npos;
}

/// The text with another number for a key; none if there is no place for it.
std::optional<std::string> WithSetting(const std::string& text, const SettingChange& change) {
  const std::string value = std::to_string(change.Number);
  if (const int position = PositionOfSetting(text, change.Key); position != kNowhere) {
    return HasHeader(text, position) ? std::nullopt : WithValueAt(text, position, value);
  }
  if (!change.Key.Late) return std::nullopt;
  const int last = PositionOfSetting(text, *FindSettingKey("VEXIL"));
  const int lineEnd = SeekForward(text, last, '\n');
  if (last == kNowhere || lineEnd == kNowhere || HasHeader(text, last)) return std::nullopt;
  return InsertText(text, std::string(change.Key.Search) + " " + value + "\r\n", lineEnd + 1);
}

}  // namespace

bool IsInterfaceType(std::string_view /*text*/, std::int64_t number) {
  return number == 0 || number == 1 || number == 8 || number == 9;
}

bool IsProtocolIndex(std::string_view text, std::int64_t number) {
  return number >= 0 && number < static_cast<std::int64_t>(ListProtocols(text).size());
}

std::span<const SettingKey> SettingKeys() { return kSettingKeys; }

int PositionOfSetting(std::string_view text, const SettingKey& key) {
  const std::optional<Section> general = FindSection(text, "General");
  if (!general) return kNowhere;
  if (key.Late) {
    const std::string_view upToNext = text.substr(0, static_cast<std::size_t>(general->End - 1));
    return FindNoCase("\n" + std::string(key.Search), upToNext, general->Begin);
  }
  int position = general->Begin;
  for (const SettingKey& each : kSettingKeys) {
    if (position != kNowhere) position = FindNoCase(each.Search, text, position);
    if (each.Name == key.Name) break;
  }
  return position;
}

const SettingKey* FindSettingKey(std::string_view name) {
  const auto* const found = std::find_if(kSettingKeys.begin(), kSettingKeys.end(),
                                         [&](const SettingKey& key) { return EqualNoCase(key.Name, name); });
  return found == kSettingKeys.end() ? nullptr : found;
}

std::optional<std::string> SettingValue(std::string_view text, const SettingKey& key) {
  const int position = PositionOfSetting(text, key);
  if (position == kNowhere) return std::nullopt;
  return std::string(Trimmed(GetLineAt(text, position)));
}

bool ChangeSettings(CfgStore& store, std::span<const SettingChange> changes) {
  std::optional<std::string> text = store.CfgText;
  for (const SettingChange& change : changes) {
    text = WithSetting(*text, change);
    if (!text) return false;
  }
  ReplaceAndSave(store, std::move(*text));
  return true;
}

bool ChangeSetting(CfgStore& store, const SettingKey& key, std::int64_t number) {
  const SettingChange change{key, number};
  return ChangeSettings(store, {&change, 1});
}

}  // namespace keplo
