#include "window/settings_keeper.h"

#include <utility>

#include "config/change_value.h"
#include "config/protocols.h"

namespace keplo {

void SettingsKeeper::StoreSetting(const std::string& key, std::int32_t value) {
  StoreSetting(key, value, [] {});
}

void SettingsKeeper::StoreAndSave(const std::string& key, std::int32_t value) {
  StoreSetting(key, value, [this] { SaveConfig(store_); });
}

void SettingsKeeper::StoreSetting(const std::string& key, std::int32_t value,
                                  const std::function<void()>& withoutKey) {
  if (!IsWhole(store_.CfgText)) return;
  const bool saved = dialogue_.RunAndReport([&] {
    if (!SetGeneralValue(store_, key, std::to_string(value))) withoutKey();
  });
  if (saved) {
    unsaved_.erase(key);
  } else {
    unsaved_[key] = value;
  }
}

void SettingsKeeper::ApplyUnsaved() {
  for (const auto& [key, value] : std::exchange(unsaved_, {})) {
    // Reported one by one, so that a failure does not affect the others.
    dialogue_.RunAndReport([&, &key = key, &value = value] {
      const auto changed = WithGeneralValue(store_.CfgText, key, std::to_string(value));
      if (changed) store_.ReplaceText(*changed);
    });
  }
}

}  // namespace keplo
