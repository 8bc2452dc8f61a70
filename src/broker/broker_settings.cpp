#include "broker/broker_settings.h"

#include <sys/stat.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <charconv>
#include <functional>
#include <nlohmann/json.hpp>
#include <system_error>

#include "disk/json_file.h"
#include "disk/posix_file_system.h"
#include "disk/replace_file.h"
#include "failure.h"
#include "typed_command.h"

namespace keplo::broker {

namespace {

/// One key of the file: its value as JSON, and how it gets into the settings.
struct SettingRow {
  std::string_view Key, Expected;
  std::function<bool(const nlohmann::json& value, BrokerSettings& settings)> Take;
  std::function<nlohmann::json(const BrokerSettings& settings)> Give;
};

/// The longest texts that a topic or a name may be made of; a topic may have 65,535 bytes.
constexpr std::size_t kMostText = 1024;

bool IsUsableText(const std::string& text) {
  return text.size() <= kMostText && std::none_of(text.begin(), text.end(), [](char letter) {
           return static_cast<unsigned char>(letter) < ' ' || letter == '\x7f';
         });
}

bool IsTopicPrefix(const std::string& text) {
  return !text.empty() && text.find_first_of("+#$ ") == std::string::npos && text.front() != '/' &&
         text.back() != '/';
}

SettingRow TextRow(std::string_view key, std::string BrokerSettings::*member, std::string_view expected,
                   std::function<bool(const std::string&)> fits) {
  return {key, expected,
          [member, fits = std::move(fits)](const nlohmann::json& value, BrokerSettings& settings) {
            if (!value.is_string()) return false;
            const auto& text = value.get_ref<const std::string&>();
            if (!IsUsableText(text) || !fits(text)) return false;
            settings.*member = text;
            return true;
          },
          [member](const BrokerSettings& settings) { return nlohmann::json(settings.*member); }};
}

SettingRow SwitchRow(std::string_view key, bool BrokerSettings::*member) {
  return {key, "true or false",
          [member](const nlohmann::json& value, BrokerSettings& settings) {
            if (!value.is_boolean()) return false;
            settings.*member = value.get<bool>();
            return true;
          },
          [member](const BrokerSettings& settings) { return nlohmann::json(settings.*member); }};
}

SettingRow PortRow() {
  return {"port", "a number from 1 to 65535",
          [](const nlohmann::json& value, BrokerSettings& settings) {
            if (!value.is_number_integer() || value < 1 || value > 65535) return false;
            settings.Port = value.get<std::uint16_t>();
            return true;
          },
          [](const BrokerSettings& settings) { return nlohmann::json(settings.Port); }};
}

const std::vector<SettingRow>& Rows() {
  const auto any = [](const std::string& /*text*/) { return true; };
  const auto some = [](const std::string& text) { return !text.empty(); };
  constexpr std::string_view prefix = "words with / between, without +, #, $ and blanks";
  static const std::vector<SettingRow> rows = {
      TextRow("host", &BrokerSettings::Host, "the name or address of the broker, without its port",
              [](const std::string& text) {
                // An address of IPv6 has several colons.
                return !text.empty() && text.find_first_of("/ ") == std::string::npos &&
                       std::count(text.begin(), text.end(), ':') != 1;
              }),
      PortRow(),
      SwitchRow("tls", &BrokerSettings::Tls),
      TextRow("ca", &BrokerSettings::Ca, "the name of a file", any),
      TextRow("certificate", &BrokerSettings::Certificate, "the name of a file", any),
      TextRow("key", &BrokerSettings::Key, "the name of a file", any),
      TextRow("user", &BrokerSettings::User, "a name", any),
      TextRow("password_file", &BrokerSettings::PasswordFile, "the name of a file", any),
      TextRow("client_id", &BrokerSettings::ClientId, "a name", some),
      TextRow("prefix", &BrokerSettings::Prefix, prefix, IsTopicPrefix),
      TextRow("discovery_prefix", &BrokerSettings::DiscoveryPrefix, prefix, IsTopicPrefix),
      SwitchRow("signals", &BrokerSettings::Signals),
      SwitchRow("send", &BrokerSettings::Send),
  };
  return rows;
}

const SettingRow* FindRow(std::string_view key) {
  const auto row =
      std::find_if(Rows().begin(), Rows().end(), [&](const SettingRow& known) { return known.Key == key; });
  return row == Rows().end() ? nullptr : &*row;
}

std::string AllKeys() {
  std::string keys;
  for (const SettingRow& row : Rows()) keys += (keys.empty() ? "" : ", ") + std::string(row.Key);
  return keys;
}

std::size_t LineAt(std::string_view text, std::size_t place) {
  place = std::min(place, text.size());
  return 1 + static_cast<std::size_t>(
                 std::count(text.begin(), text.begin() + static_cast<std::ptrdiff_t>(place), '\n'));
}

[[noreturn]] void Refuse(const std::filesystem::path& file, std::size_t line, const std::string& text) {
  throw Failure(EINVAL, file.string() + ", line " + std::to_string(line) + ": " + text);
}

/// The line of a key; its name may also stand as a value, so that the colon is looked for.
std::size_t LineOfKey(std::string_view text, const std::string& key) {
  const std::string quoted =
      nlohmann::json(key).dump(-1, ' ', false, nlohmann::json::error_handler_t::replace);
  for (auto at = text.find(quoted); at != std::string_view::npos; at = text.find(quoted, at + 1)) {
    const auto next = text.find_first_not_of(" \t\r\n", at + quoted.size());
    if (next != std::string_view::npos && text[next] == ':') return LineAt(text, at);
  }
  return 1;
}

/// @throws Failure with the line where the text ceases to be JSON
nlohmann::json ParseObject(std::string_view text, const std::filesystem::path& file) {
  try {
    return ParseJsonObject(text);
  } catch (const Failure& failure) {
    std::size_t line = 1;
    try {
      // Deep nesting is refused above and never comes here to be parsed without a limit.
      if (std::string_view(failure.what()).find("nested") == std::string_view::npos) {
        const auto whole = nlohmann::json::parse(text);
      }
    } catch (const nlohmann::json::parse_error& error) {
      line = LineAt(text, error.byte == 0 ? 0 : error.byte - 1);
    }
    Refuse(file, line,
           "the file " + std::string(failure.what()) +
               "; expected is one object { } of settings. Mend it, or remove it and write it anew with: " +
               TypedCommand("broker set", FolderOf(file).string()));
  }
}

void CompleteFileName(std::string& name, const std::filesystem::path& folder) {
  if (!name.empty()) name = (folder / name).string();
}

nlohmann::json ValueOf(const std::string& key, const std::string& text) {
  BrokerSettings probe;
  const SettingRow& row = *FindRow(key);
  nlohmann::json value = text;
  if (row.Give(probe).is_boolean()) {
    if (text == "yes" || text == "true") value = true;
    if (text == "no" || text == "false") value = false;
  } else if (row.Give(probe).is_number()) {
    int number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error == std::errc() && end == text.data() + text.size()) value = number;
  }
  if (row.Take(value, probe)) return value;
  const std::string expected =
      value.is_string() && row.Give(probe).is_boolean() ? "yes or no" : std::string(row.Expected);
  throw Failure(EINVAL, "The setting " + key + " cannot be \"" + text + "\": it takes " + expected + ".");
}

}  // namespace

std::filesystem::path BrokerFile(const std::filesystem::path& appPath) { return appPath / "broker.json"; }

BrokerSettings ParseBrokerSettings(std::string_view text, const std::filesystem::path& file) {
  const nlohmann::json object = ParseObject(text, file);
  BrokerSettings settings;
  for (const auto& [key, value] : object.items()) {
    const SettingRow* row = FindRow(key);
    if (row == nullptr) {
      Refuse(file, LineOfKey(text, key),
             "\"" + key + "\" is no setting; expected is one of " + AllKeys() + ".");
    }
    if (!row->Take(value, settings)) {
      Refuse(file, LineOfKey(text, key), "\"" + key + "\" takes " + std::string(row->Expected) + ".");
    }
  }
  if (settings.Host.empty()) {
    Refuse(file, 1, "there is no \"host\"; expected is the name or address of the broker.");
  }
  if (settings.Certificate.empty() != settings.Key.empty()) {
    Refuse(file, LineOfKey(text, settings.Key.empty() ? "certificate" : "key"),
           "a client's certificate and its key come together; expected are \"certificate\" and \"key\".");
  }
  if (settings.User.empty() && !settings.PasswordFile.empty()) {
    Refuse(file, LineOfKey(text, "password_file"),
           "a password belongs to a user; expected is \"user\" beside \"password_file\".");
  }
  const std::string ofTls = !settings.Ca.empty() ? "ca" : !settings.Certificate.empty() ? "certificate" : "";
  if (!settings.Tls && !ofTls.empty()) {
    Refuse(file, LineOfKey(text, ofTls),
           "\"" + ofTls +
               "\" does nothing without a secure connection; expected is \"tls\": true beside it, or none. " +
               TypedCommand("broker set --tls yes", FolderOf(file).string()) + " turns it on.");
  }
  if (!object.contains("port") && settings.Tls) settings.Port = kTlsPort;
  const std::filesystem::path folder = file.parent_path();
  for (auto* name : {&settings.Ca, &settings.Certificate, &settings.Key, &settings.PasswordFile}) {
    CompleteFileName(*name, folder);
  }
  return settings;
}

std::optional<BrokerSettings> ReadBrokerSettings(const std::filesystem::path& appPath) {
  const std::filesystem::path file = BrokerFile(appPath);
  try {
    return ParseBrokerSettings(ReadJsonFile(file), file);
  } catch (const Failure& failure) {
    if (failure.Number() == ENOENT) return std::nullopt;
    throw;
  }
}

BrokerSettings RequireBrokerSettings(const std::filesystem::path& appPath) {
  if (auto settings = ReadBrokerSettings(appPath)) return *std::move(settings);
  throw Failure(
      ENOENT, "No broker is named; do it with: " + TypedCommand("broker set --host NAME", appPath.string()));
}

void ChangeBrokerSettings(const std::filesystem::path& appPath,
                          const std::vector<std::pair<std::string, std::string>>& changes) {
  const std::filesystem::path file = BrokerFile(appPath);
  PosixFileSystem files;
  const std::filesystem::path target = files.Resolve(file);
  const std::unique_ptr<LockedFolder> folder = LockFolderOf(files, target);
  nlohmann::ordered_json object = nlohmann::ordered_json::object();
  try {
    object = nlohmann::ordered_json::parse(ParseObject(ReadJsonFile(file), file).dump());
  } catch (const Failure& failure) {
    if (failure.Number() != ENOENT) throw;
  }
  for (const auto& [key, text] : changes) object[key] = ValueOf(key, text);
  const std::string content = object.dump(2) + "\n";
  ParseBrokerSettings(content, file);
  try {
    ReplaceInLockedFolder(files, target, content);
    folder->Flush();
  } catch (const Failure& failure) {
    throw CannotBeWritten(file, failure);
  }
}

std::string NameOf(const BrokerSettings& settings) {
  return settings.Host + " port " + std::to_string(settings.Port);
}

nlohmann::ordered_json AsJson(const BrokerSettings& settings) {
  nlohmann::ordered_json object;
  for (const SettingRow& row : Rows()) object[std::string(row.Key)] = row.Give(settings);
  return object;
}

std::string ReadPassword(const BrokerSettings& settings) {
  if (settings.PasswordFile.empty()) return {};
  struct stat status {};
  if (stat(settings.PasswordFile.c_str(), &status) == 0 && (status.st_mode & (S_IRWXG | S_IRWXO)) != 0) {
    throw Failure(EACCES, "The password file " + settings.PasswordFile +
                              " may be read by others. Mend it: chmod 600 " +
                              ShellQuoted(settings.PasswordFile));
  }
  std::string text;
  try {
    text = ReadJsonFile(settings.PasswordFile);
  } catch (const Failure& failure) {
    throw Failure(failure.Number(), "The password file " + std::string(failure.what()));
  }
  text.resize(std::min(text.find_first_of("\r\n"), text.size()));
  return text;
}

}  // namespace keplo::broker
