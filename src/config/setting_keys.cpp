#include "config/setting_keys.h"

#include <algorithm>
#include <array>

#include "config/protocols.h"
#include "config/sections.h"
#include "config/values.h"

namespace keplo {

namespace {

template <std::int64_t kLeast, std::int64_t kMost>
bool Within(std::string_view /*text*/, std::int64_t number) {
  return number >= kLeast && number <= kMost;
}

bool IsInterfaceType(std::string_view /*text*/, std::int64_t number) {
  return number == 0 || number == 1 || number == 8 || number == 9;
}

bool IsProtocolIndex(std::string_view text, std::int64_t number) {
  return number >= 0 && number < static_cast<std::int64_t>(ListProtocols(text).size());
}

constexpr auto kKeys = std::to_array<SettingKey>({
    {"COMPORT", "a serial port, 1 to 30", Within<1, 30>},
    {"PROTOCOL", "the place of a protocol in the list of 'keplo protocols', counted from 0", IsProtocolIndex},
    {"PROCDELAY", "a delay, 0 to 100", Within<0, 100>},
    {"ITYPE", "0 or 8 for the standard or the mouse receiver, 1 more for output on TxD", IsInterfaceType},
    {"BEEPON", "0 or 1", Within<0, 1>},
    {"VEXIL", "0 for no zone hardware, or a zone, 1 to 8", Within<0, 8>},
    {"ANALYSIS", "0 for the first analysis, 1 for the second look", Within<0, 1>},
});

/// The key that files of before the second look do not have, and that may stand anywhere in [General].
bool IsLate(const SettingKey& key) { return key.Name == "ANALYSIS"; }

/// The position behind a key's = inside [General], where a start-up reads it.
int PlaceOf(std::string_view text, const SettingKey& key) {
  const std::optional<Section> general = FindSection(text, "General");
  if (!general) return kNowhere;
  if (IsLate(key)) {
    const std::string_view upToNext = text.substr(0, static_cast<std::size_t>(general->End - 1));
    return FindNoCase("\n" + std::string(key.Name) + "=", upToNext, general->Begin);
  }
  int position = general->Begin;
  for (const SettingKey& each : kKeys) {
    if (position != kNowhere) position = FindNoCase(std::string(each.Name) + "=", text, position);
    if (each.Name == key.Name) break;
  }
  return position;
}

/// The text with another number of a key; empty if it has no place for it.
std::optional<std::string> WithSetting(const std::string& text, const SettingChange& change) {
  const std::string value = std::to_string(change.Number);
  if (const int place = PlaceOf(text, change.Key); place != kNowhere) return WithValueAt(text, place, value);
  if (!IsLate(change.Key)) return std::nullopt;
  const int last = PlaceOf(text, *FindSettingKey("VEXIL"));
  const int lineEnd = SeekForward(text, last, '\n');
  if (last == kNowhere || lineEnd == kNowhere) return std::nullopt;
  return InsertText(text, std::string(change.Key.Name) + "= " + value + "\r\n", lineEnd + 1);
}

}  // namespace

std::span<const SettingKey> SettingKeys() { return kKeys; }

const SettingKey* FindSettingKey(std::string_view name) {
  const auto* const found = std::find_if(kKeys.begin(), kKeys.end(),
                                         [&](const SettingKey& key) { return EqualNoCase(key.Name, name); });
  return found == kKeys.end() ? nullptr : found;
}

std::optional<std::string> SettingValue(std::string_view text, const SettingKey& key) {
  const int place = PlaceOf(text, key);
  if (place == kNowhere) return std::nullopt;
  return std::string(Trimmed(GetLineAt(text, place)));
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
