#include <algorithm>
#include <filesystem>
#include <iostream>
#include <memory>
#include <nlohmann/json.hpp>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <system_error>
#include <vector>

#include "broker/broker_check.h"
#include "broker/broker_settings.h"
#include "broker/change_settings.h"
#include "broker/identity.h"
#include "broker/moved_device.h"
#include "cli/broker_reporter.h"
#include "cli/commands.h"
#include "line/port_map.h"
#include "program/app_path.h"
#include "program/json_line.h"
#include "program/printable.h"

namespace keplo::cli {

namespace {

using broker::BrokerSettings;

/// An option of `broker set`, and the key that it changes.
struct SetOption {
  const char* Name;
  const char* Key;
  const char* About;
};

constexpr SetOption kSetOptions[] = {
    {"--host", "host", "Name or address of the broker"},
    {"--port", "port", "Its port; 1883, or 8883 with TLS, unless it is another"},
    {"--tls", "tls", "yes for a secure connection"},
    {"--ca", "ca", "Certificate of the authority that signed the broker's; the system's authorities without"},
    {"--certificate", "certificate", "Certificate of this client"},
    {"--key", "key", "Key of this client"},
    {"--user", "user", "Name to log in with"},
    {"--password-file", "password_file", "File whose first line is the password"},
    {"--client-id", "client_id", "Name of the connection; keplo-IDENTITY without"},
    {"--prefix", "prefix", "First word of all topics"},
    {"--discovery-prefix", "discovery_prefix", "First word of the topics that Home Assistant looks at"},
    {"--signals", "signals", "yes to tell every signal that is heard"},
    {"--send", "send", "yes to send what the broker asks for"},
};

/// The options of `broker forget`, which specify where the device is.
constexpr std::string_view kPlaceKeys[] = {"host", "port", "discovery_prefix"};

constexpr std::string_view kFileKeys[] = {"ca", "certificate", "key", "password_file"};

struct BrokerOptions {
  std::string AppPath;
  bool Json = false;
  std::vector<std::optional<std::string>> Values{std::size(kSetOptions)};
};

/// The absolute path of a file: a relative path on the command line is relative to the working directory, but
/// one in the settings file to its folder.
/// @throws Refused if the file does not exist or is a folder
std::string AbsolutePath(const std::string& name) {
  if (name.empty()) return name;
  const std::filesystem::path whole = std::filesystem::absolute(name);
  std::error_code error;
  // A file that this user may not access may be accessible to the user of the host.
  if (!std::filesystem::exists(whole, error) && !error) {
    throw Refused("There is no file " + whole.string() + ". Name one that is there.");
  }
  if (std::filesystem::is_directory(whole, error)) {
    throw Refused(whole.string() + " is a folder. Name a file.");
  }
  return whole.string();
}

bool IsOneOf(std::span<const std::string_view> keys, std::string_view key) {
  return std::find(keys.begin(), keys.end(), key) != keys.end();
}

broker::TypedSettings TypedOf(const BrokerOptions& options) {
  broker::TypedSettings typed;
  for (std::size_t i = 0; i < options.Values.size(); ++i) {
    if (!options.Values[i]) continue;
    const char* const key = kSetOptions[i].Key;
    typed.emplace_back(key, IsOneOf(kFileKeys, key) ? AbsolutePath(*options.Values[i]) : *options.Values[i]);
  }
  return typed;
}

int Set(const BrokerOptions& options) {
  const auto appPath = RequireInstall(options.AppPath);
  const broker::TypedSettings changes = TypedOf(options);
  broker::ChangedSettings changed;
  try {
    changed = broker::ChangeBrokerSettings(appPath, changes);
  } catch (const broker::InvalidSetting& invalid) {
    throw Refused(invalid.what());
  } catch (const Failure& failure) {
    if (failure.Number() == EINVAL) throw;
    throw NotWritten(failure.Number(), failure.what());
  }
  std::cout << broker::BrokerFile(appPath).string() << " written; a host that runs takes it in by itself."
            << std::endl;
  if (!changed.Before) return kDone;
  const std::string left = broker::RemoveFromOldBroker(*changed.Before, changed.Now, appPath);
  if (!left.empty()) Tell(left);
  return kDone;
}

int Show(const BrokerOptions& options) {
  const auto appPath = RequireInstall(options.AppPath);
  nlohmann::ordered_json shown = AsJson(RequireBroker(appPath));
  shown["identity"] = broker::IdentityOf(appPath);
  if (options.Json) {
    std::cout << JsonLine(shown) << '\n';
    return kDone;
  }
  for (const auto& [key, value] : shown.items()) {
    const std::string text = value.is_string() ? value.get<std::string>() : value.dump();
    if (!text.empty()) std::cout << key << ' ' << Printable(text) << '\n';
  }
  return kDone;
}

int Check(const BrokerOptions& options) {
  const auto appPath = RequireInstall(options.AppPath);
  const BrokerSettings settings = RequireBroker(appPath);
  std::vector<broker::CheckedReceivers> receivers;
  for (const MappedPort& port : LoadPortMap(appPath).Ports) {
    if (port.Type == MappedPort::Kind::Mqtt)
      receivers.push_back({port.Rooms.Filter, port.Rooms.WholeTopics()});
  }
  const bool all = broker::CheckBroker(settings, broker::IdentityOf(appPath), receivers,
                                       [](const std::string& step, const std::string& result) {
                                         std::cout << Printable(step + ": " + result) << std::endl;
                                       });
  return all ? kDone : kNoResult;
}

/// The settings, with the place from the command line, if any. If that includes the host, broker.json need
/// not exist.
BrokerSettings SettingsOfPlace(const std::filesystem::path& appPath, const broker::TypedSettings& place) {
  const bool namesHost =
      std::any_of(place.begin(), place.end(), [](const auto& one) { return one.first == "host"; });
  BrokerSettings settings =
      namesHost ? broker::ReadBrokerSettings(appPath).value_or(BrokerSettings()) : RequireBroker(appPath);
  try {
    broker::ApplyTyped(place, settings);
  } catch (const broker::InvalidSetting& invalid) {
    throw Refused(invalid.what());
  }
  return settings;
}

int Forget(const BrokerOptions& options) {
  const auto appPath = RequireInstall(options.AppPath);
  const broker::TypedSettings place = TypedOf(options);
  const BrokerSettings settings = SettingsOfPlace(appPath, place);
  const std::string identity = broker::IdentityOf(appPath);
  try {
    broker::ForgetDevice(settings, identity);
  } catch (const Failure& failure) {
    throw Refused(failure.what());
  }
  std::cout << "The device is taken out of Home Assistant.";
  if (place.empty()) {
    std::cout << " A host that runs brings it back when it connects again, or when Home Assistant starts; "
                 "remove "
              << broker::BrokerFile(appPath).string() << " to end that.";
  }
  std::cout << '\n';
  return kDone;
}

}  // namespace

void AddBrokerCommand(Command& root) {
  Command command = root.Sub("broker", "Tell events to an MQTT broker, and so to Home Assistant");
  const auto options = std::make_shared<BrokerOptions>();

  Command set = command.Sub("set", "Change the settings of the broker");
  Command group = set.AtLeastOneOf("Settings");
  for (std::size_t i = 0; i < std::size(kSetOptions); ++i) {
    group.Text(kSetOptions[i].Name, options->Values[i], kSetOptions[i].About);
  }
  AddAppPathOption(set, options->AppPath);
  set.Examples({"keplo broker set --host homeassistant.local --user keplo --password-file ~/.keplo-password",
                "keplo broker set --tls yes --ca /etc/ssl/house.pem"});
  set.Runs([options] { return Set(*options); });

  Command show = command.Sub("show", "Show the settings of the broker");
  show.Flag("--json", options->Json, "As one JSON object");
  AddAppPathOption(show, options->AppPath);
  show.Examples({"keplo broker show"});
  show.Runs([options] { return Show(*options); });

  Command check =
      command.Sub("check", "Go the way to the broker step by step, and say what to do where it ends");
  AddAppPathOption(check, options->AppPath);
  check.Examples({"keplo broker check"});
  check.Runs([options] { return Check(*options); });

  Command forget = command.Sub("forget", "Take the device out of Home Assistant");
  for (std::size_t i = 0; i < std::size(kSetOptions); ++i) {
    if (!IsOneOf(kPlaceKeys, kSetOptions[i].Key)) continue;
    forget.Text(kSetOptions[i].Name, options->Values[i],
                "Where the device is, if broker.json says something else");
  }
  AddAppPathOption(forget, options->AppPath);
  forget.Examples({"keplo broker forget", "keplo broker forget --discovery-prefix hass"});
  forget.Runs([options] { return Forget(*options); });
}

}  // namespace keplo::cli
