#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <string>

#include "config/cfg_store.h"
#include "window/dialogue.h"

namespace keplo {

/// Writes settings to the file at once; those whose save failed are saved when the window closes.
class SettingsKeeper {
 public:
  SettingsKeeper(CfgStore& store, Dialogue& dialogue) : store_(store), dialogue_(dialogue) {}

  /// Changes a key of [General] and saves. Does nothing if the text does not have the key.
  void StoreSetting(const std::string& key, std::int32_t value);
  /// Like StoreSetting, but saves the text even if it does not have the key.
  void StoreAndSave(const std::string& key, std::int32_t value);
  /// Applies the settings whose save failed to the text, in memory only.
  void ApplyUnsaved();

 private:
  void StoreSetting(const std::string& key, std::int32_t value, const std::function<void()>& withoutKey);

  CfgStore& store_;
  Dialogue& dialogue_;
  std::map<std::string, std::int32_t> unsaved_;
};

}  // namespace keplo
