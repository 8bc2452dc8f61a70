#include <charconv>
#include <iostream>
#include <memory>
#include <string>
#include <vector>

#include "cli/commands.h"
#include "cli/open_map.h"
#include "cli/refuse.h"
#include "config/numbers.h"
#include "config/setting_keys.h"
#include "program/app_path.h"

namespace keplo::cli {

namespace {

struct SettingsOptions {
  std::string AppPath, Key, Value;
};

std::string ValueShown(std::string_view text, const SettingKey& key) {
  // A file of before a key was known works as with 0.
  return SettingValue(text, key).value_or("0");
}

std::int64_t NumberOf(std::string_view text, std::string_view key) {
  return NumberWithoutFraction(ValueShown(text, *FindSettingKey(key)));
}

int Change(CfgStore& store, const SettingKey& key, std::int64_t number) {
  const SettingKey& interfaceType = *FindSettingKey("ITYPE");
  const std::int64_t type = NumberOf(store.CfgText, "ITYPE");
  if (key.Name == "ITYPE" && number % 2 == 1 && NumberOf(store.CfgText, "VEXIL") > 0) {
    return Refuse("The zone hardware needs TxD for itself; keplo settings VEXIL 0 gives it up.");
  }
  std::vector<SettingChange> changes = {{key, number}};
  if (key.Name == "VEXIL" && number > 0 && type % 2 == 1) changes.push_back({interfaceType, type - 1});
  if (!ChangeSettings(store, changes)) {
    return Refuse(store.Path.string() + " has no line for " + std::string(key.Name) +
                  "=; put one into [General].");
  }
  for (const SettingChange& change : changes) std::cout << change.Key.Name << ' ' << change.Number << '\n';
  return kDone;
}

int ChangeTo(CfgStore& store, const SettingKey& key, const std::string& value) try {
  std::int64_t number = 0;
  const auto [end, error] = std::from_chars(value.data(), value.data() + value.size(), number);
  if (error != std::errc() || end != value.data() + value.size() || !key.Fits(store.CfgText, number)) {
    return Refuse(std::string(key.Name) + " cannot be " + value + ": it takes " + std::string(key.Takes) +
                  ".");
  }
  return Change(store, key, number);
} catch (const Failure& failure) {
  return Refuse(failure.what());
}

int Run(const SettingsOptions& options) {
  OpenConfig config(options.AppPath);
  CfgStore& store = config.Mod.Store;
  if (options.Key.empty()) {
    for (const SettingKey& key : SettingKeys()) {
      std::cout << key.Name << ' ' << ValueShown(store.CfgText, key) << '\n';
    }
    return kDone;
  }
  const SettingKey* key = FindSettingKey(options.Key);
  if (key == nullptr) return Refuse("There is no setting " + options.Key + "; keplo settings lists them.");
  if (!options.Value.empty()) {
    config.RequireWhole();
    return ChangeTo(store, *key, options.Value);
  }
  std::cout << ValueShown(store.CfgText, *key) << '\n';
  return kDone;
}

}  // namespace

void AddSettingsCommand(Command& root) {
  Command command = root.Sub("settings", "Show or change the settings of the interface");
  const auto options = std::make_shared<SettingsOptions>();
  command.Word("KEY", options->Key, "Only this setting");
  command.Word("VALUE", options->Value, "Change it to this number");
  AddAppPathOption(command, options->AppPath);
  command.Runs([options] { return AmongOthers([&] { return Run(*options); }); });
}

}  // namespace keplo::cli
