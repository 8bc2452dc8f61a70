#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "config/cfg_store.h"
#include "config/key_table.h"

namespace keplo {

/// In the order of the file.
std::span<const SettingKey> SettingKeys();
/// @param name in any letter case
/// @return null if there is no such key
const SettingKey* FindSettingKey(std::string_view name);

/// The position after a key's = inside [General], where a start-up reads it; 0 if it is missing there.
int PlaceOfSetting(std::string_view text, const SettingKey& key);

/// The value of a key as it stands in [General]; none if the key is missing there.
std::optional<std::string> SettingValue(std::string_view text, const SettingKey& key);

/// Changes a key that fits and saves. A file from before the key was known gets its line, after the other
/// keys.
/// @return false, with nothing changed, if the file has no place for it
/// @throws Failure as SetGeneralValue
bool ChangeSetting(CfgStore& store, const SettingKey& key, std::int64_t number);

/// A key and the number that it takes.
struct SettingChange {
  const SettingKey& Key;
  std::int64_t Number;
};
/// Several of them in one save: all are changed or none.
bool ChangeSettings(CfgStore& store, std::span<const SettingChange> changes);

}  // namespace keplo
