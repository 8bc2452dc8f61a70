#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <string>

#include "config/cfg_store.h"
#include "window/dialogue.h"

namespace keplo {

/// Writes settings to the file at once, and tries those whose save failed once more at the end.
class SettingsKeeper {
 public:
  SettingsKeeper(CfgStore& store, Dialogue& dialogue) : store_(store), dialogue_(dialogue) {}

  /// Changes a key of [General] and saves. A text without the key stays as it is.
  void StoreSetting(const std::string& key, std::int32_t value);
  /// The same, but a text without the key is saved all the same.
  void StoreAndSave(const std::string& key, std::int32_t value);
  /// Puts the settings whose save failed into the text, in memory only.
  void TakeUnsaved();

 private:
  void StoreSetting(const std::string& key, std::int32_t value, const std::function<void()>& withoutKey);

  CfgStore& store_;
  Dialogue& dialogue_;
  std::map<std::string, std::int32_t> unsaved_;
};

}  // namespace keplo
