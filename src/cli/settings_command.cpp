#include <charconv>
#include <iostream>
#include <memory>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "cli/commands.h"
#include "cli/open_install.h"
#include "config/parse_number.h"
#include "config/setting_keys.h"
#include "program/app_path.h"
#include "program/json_line.h"
#include "program/printable.h"
#include "typed_command.h"

namespace keplo::cli {

namespace {

struct SettingsOptions {
  std::string AppPath, Key, Value;
  bool Json = false;
};

std::string ValueShown(std::string_view text, const SettingKey& key) {
  // In an older file, a missing key means 0.
  return SettingValue(text, key).value_or("0");
}

std::int64_t NumberOf(std::string_view text, std::string_view key) {
  return NumberWithoutFraction(ValueShown(text, *FindSettingKey(key)));
}

std::int64_t RequireFit(std::string_view text, const SettingKey& key, const std::string& value) {
  const std::string_view digits = std::string_view(value).substr(value.starts_with('+') ? 1 : 0);
  std::int64_t number = 0;
  const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), number);
  const bool isNumber =
      error == std::errc() && end == digits.data() + digits.size() && !value.starts_with("+-");
  if (isNumber && key.Fits(text, number)) return number;
  throw Refused(std::string(key.Name) + " cannot be " + value + ": it takes " + std::string(key.Takes) + ".");
}

/// A change and its consequences: zone hardware and software carrier both need TxD.
std::vector<SettingChange> ChangesFor(std::string_view text, const SettingKey& key, std::int64_t number,
                                      const std::string& appPathOption) {
  if (key.Name == "ITYPE" && number % 2 == 1 && NumberOf(text, "VEXIL") > 0) {
    throw Refused("The zone hardware needs TxD for itself; " +
                  TypedCommand("settings VEXIL 0", appPathOption) + " gives it up.");
  }
  std::vector<SettingChange> changes = {{key, number}};
  const std::int64_t interfaceType = NumberOf(text, "ITYPE");
  if (key.Name == "VEXIL" && number > 0 && interfaceType % 2 == 1) {
    changes.push_back({*FindSettingKey("ITYPE"), interfaceType - 1});
  }
  return changes;
}

int Change(OpenedConfig& config, const SettingKey& key, const SettingsOptions& options) {
  std::vector<SettingChange> changes;
  config.Change([&](CfgStore& store) {
    changes = ChangesFor(store.CfgText, key, RequireFit(store.CfgText, key, options.Value), options.AppPath);
    if (!ChangeSettings(store, changes)) {
      throw Refused(store.Path.string() + " has no line for " + std::string(key.Name) +
                    "=; put one into [General].");
    }
  });
  for (const SettingChange& change : changes) std::cout << change.Key.Name << ' ' << change.Number << '\n';
  return kDone;
}

void Print(std::string_view text, const SettingKey& key, const SettingsOptions& options) {
  if (options.Json) {
    nlohmann::ordered_json line;
    line["key"] = key.Name;
    line["value"] = NumberOf(text, key.Name);
    std::cout << JsonLine(line) << '\n';
    return;
  }
  if (options.Key.empty()) std::cout << key.Name << ' ';
  std::cout << Printable(ValueShown(text, key)) << '\n';
}

int Run(const SettingsOptions& options) {
  OpenedConfig config(options.AppPath);
  if (options.Key.empty()) {
    for (const SettingKey& key : SettingKeys()) Print(config.Text(), key, options);
    return kDone;
  }
  const SettingKey* key = FindSettingKey(options.Key);
  if (key == nullptr) {
    throw Refused("There is no setting " + options.Key + "; " + TypedCommand("settings", options.AppPath) +
                  " lists them.");
  }
  if (!options.Value.empty()) return Change(config, *key, options);
  Print(config.Text(), *key, options);
  return kDone;
}

}  // namespace

void AddSettingsCommand(Command& root) {
  Command command = root.Sub("settings", "Show or change the settings of the interface");
  const auto options = std::make_shared<SettingsOptions>();
  command.Word("KEY", options->Key, "Only this setting");
  command.Word("VALUE", options->Value, "Change it to this number");
  command.Flag("--json", options->Json, "One JSON object a setting");
  AddAppPathOption(command, options->AppPath);
  command.Examples({"keplo settings", "keplo settings COMPORT 2"});
  command.Runs([options] { return Run(*options); });
}

}  // namespace keplo::cli
