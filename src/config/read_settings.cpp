#include "config/read_settings.h"

#include "config/parse_number.h"
#include "config/setting_keys.h"

namespace keplo {

SettingsReading ReadSettings(const CfgStore& store, Settings& settings) {
  if (FindNoCase("[End]", store.CfgText, 1) == kNowhere) return {"[End]"};
  int position = FindNoCase("[General]", store.CfgText, 1);
  if (position == kNowhere) return {"[General]"};
  for (const SettingKey& key : kSettingKeys) {
    if (key.Late) continue;
    const int after = FindNoCase(key.Search, store.CfgText, position);
    if (after == kNowhere) return {key.Search, position};
    position = after;
    key.Take(GetLineAt(store.CfgText, position), settings);
  }
  for (const SettingKey& key : kSettingKeys) {
    if (key.Late) key.Take(SettingValue(store.CfgText, key).value_or("0"), settings);
  }
  return {};
}

}  // namespace keplo
