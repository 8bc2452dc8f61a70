#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "config/cfg_store.h"
#include "config/key_table.h"

namespace keplo {

/// All keys of [General], in the order of the file.
std::span<const SettingKey> SettingKeys();
/// @param name in any letter case
/// @return null if there is no such key
const SettingKey* FindSettingKey(std::string_view name);

/// The position just after the = of a key of [General]; 0 if the key is missing.
int PositionOfSetting(std::string_view text, const SettingKey& key);

/// The value of a key of [General]; none if the key is missing.
std::optional<std::string> SettingValue(std::string_view text, const SettingKey& key);

/// Changes the value of a key and saves. An older file that lacks the key gets a line for it, after the
/// others.
/// @return false, with nothing changed, if there is no place for the value
/// @throws Failure as SetGeneralValue
bool ChangeSetting(CfgStore& store, const SettingKey& key, std::int64_t number);

/// A key and its new number.
struct SettingChange {
  const SettingKey& Key;
  std::int64_t Number;
};
/// Changes several keys in one save, or none of them.
bool ChangeSettings(CfgStore& store, std::span<const SettingChange> changes);

}  // namespace keplo
