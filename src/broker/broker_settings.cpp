#include "broker/broker_settings.h"

#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <nlohmann/json.hpp>

#include "broker/setting_rows.h"
#include "broker/settings_flaw.h"
#include "disk/json_file.h"
#include "disk/replace_file.h"
#include "failure.h"
#include "typed_command.h"

namespace keplo::broker {

namespace {

std::size_t LineAt(std::string_view text, std::size_t place) {
  place = std::min(place, text.size());
  return 1 + static_cast<std::size_t>(
                 std::count(text.begin(), text.begin() + static_cast<std::ptrdiff_t>(place), '\n'));
}

[[noreturn]] void Refuse(const std::filesystem::path& file, std::size_t line, const std::string& text) {
  throw Failure(EINVAL, file.string() + ", line " + std::to_string(line) + ": " + text);
}

/// The line of a key. The colon after it distinguishes it from an equal value.
std::size_t LineOfKey(std::string_view text, const std::string& key) {
  const std::string quoted =
      nlohmann::json(key).dump(-1, ' ', false, nlohmann::json::error_handler_t::replace);
  for (auto at = text.find(quoted); at != std::string_view::npos; at = text.find(quoted, at + 1)) {
    const auto next = text.find_first_not_of(" \t\r\n", at + quoted.size());
    if (next != std::string_view::npos && text[next] == ':') return LineAt(text, at);
  }
  return 1;
}

/// @throws Failure with the line of the first JSON error
nlohmann::json ParseObject(std::string_view text, const std::filesystem::path& file) {
  try {
    return ParseJsonObject(text);
  } catch (const Failure& failure) {
    std::size_t line = 1;
    try {
      // Deeply nested text is not parsed again, because this parser has no limit.
      if (std::string_view(failure.what()).find("nested") == std::string_view::npos) {
        const auto whole = nlohmann::json::parse(text);
      }
    } catch (const nlohmann::json::parse_error& error) {
      line = LineAt(text, error.byte == 0 ? 0 : error.byte - 1);
    }
    Refuse(file, line,
           "the file " + std::string(failure.what()) +
               "; expected is one object { } of settings. Mend it, or remove it and write it anew with: " +
               TypedCommand("broker set --host NAME", FolderOf(file).string()));
  }
}

std::string AllKeys() {
  std::string keys;
  for (const SettingRow& row : SettingRows()) keys += (keys.empty() ? "" : ", ") + std::string(row.Key);
  return keys;
}

void CompleteFileName(std::string& name, const std::filesystem::path& folder) {
  if (!name.empty()) name = (folder / name).string();
}

}  // namespace

std::filesystem::path BrokerFile(const std::filesystem::path& appPath) { return appPath / "broker.json"; }

BrokerSettings ParseBrokerSettings(std::string_view text, const std::filesystem::path& file) {
  const nlohmann::json object = ParseObject(text, file);
  BrokerSettings settings;
  for (const auto& [key, value] : object.items()) {
    const SettingRow* row = FindSettingRow(key);
    if (row == nullptr) {
      Refuse(file, LineOfKey(text, key),
             "\"" + key + "\" is no setting; expected is one of " + AllKeys() + ".");
    }
    if (!row->Set(value, settings)) {
      Refuse(file, LineOfKey(text, key), "\"" + key + "\" takes " + std::string(row->Expected) + ".");
    }
  }
  if (const auto flaw = FlawOf(settings)) {
    Refuse(file, flaw->Key.empty() ? 1 : LineOfKey(text, flaw->Key),
           flaw->What + "; expected is " + flaw->Expected + ". It may be mended with: " +
               TypedCommand("broker set " + flaw->Mend, FolderOf(file).string()));
  }
  if (!object.contains("port") && settings.Tls) settings.Port = kTlsPort;
  const std::filesystem::path folder = file.parent_path();
  for (auto* name : {&settings.Ca, &settings.Certificate, &settings.Key, &settings.PasswordFile}) {
    CompleteFileName(*name, folder);
  }
  return settings;
}

std::optional<std::string> ReadBrokerFile(const std::filesystem::path& file) {
  try {
    return ReadJsonFile(file);
  } catch (const Failure& failure) {
    if (failure.Number() == ENOENT) return std::nullopt;
    throw Failure(failure.Number(), std::string(failure.what()) + ".");
  }
}

std::optional<BrokerSettings> ReadBrokerSettings(const std::filesystem::path& appPath) {
  const std::filesystem::path file = BrokerFile(appPath);
  const std::optional<std::string> text = ReadBrokerFile(file);
  if (!text) return std::nullopt;
  return ParseBrokerSettings(*text, file);
}

BrokerSettings RequireBrokerSettings(const std::filesystem::path& appPath) {
  if (auto settings = ReadBrokerSettings(appPath)) return *std::move(settings);
  throw Failure(
      ENOENT, "No broker is named; do it with: " + TypedCommand("broker set --host NAME", appPath.string()));
}

std::string NameOf(const BrokerSettings& settings) {
  return settings.Host + " port " + std::to_string(settings.Port);
}

nlohmann::ordered_json AsJson(const BrokerSettings& settings) {
  nlohmann::ordered_json object;
  for (const SettingRow& row : SettingRows()) object[std::string(row.Key)] = row.Get(settings);
  return object;
}

std::string ReadPassword(const BrokerSettings& settings) {
  if (settings.PasswordFile.empty()) return {};
  struct stat status {};
  const bool isThere = stat(settings.PasswordFile.c_str(), &status) == 0;
  if (isThere && S_ISREG(status.st_mode) && (status.st_mode & (S_IRWXG | S_IRWXO)) != 0) {
    throw Failure(EACCES, "The password file " + settings.PasswordFile +
                              " may be read by others. Mend it: chmod 600 " +
                              ShellQuoted(settings.PasswordFile));
  }
  std::string text;
  try {
    text = ReadJsonFile(settings.PasswordFile);
  } catch (const Failure& failure) {
    throw Failure(failure.Number(), "The password file " + std::string(failure.what()) + ".");
  }
  text.resize(std::min(text.find_first_of("\r\n"), text.size()));
  if (text.empty()) {
    throw Failure(EINVAL, "The first line of the password file " + settings.PasswordFile +
                              " is empty. Write the password there.");
  }
  return text;
}

}  // namespace keplo::broker
