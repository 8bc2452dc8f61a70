#include "broker/change_settings.h"

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <nlohmann/json.hpp>
#include <system_error>

#include "broker/setting_rows.h"
#include "broker/settings_flaw.h"
#include "disk/json_file.h"
#include "disk/posix_file_system.h"
#include "disk/replace_file.h"
#include "failure.h"
#include "typed_command.h"

namespace keplo::broker {

namespace {

std::string OptionOf(std::string key) {
  std::replace(key.begin(), key.end(), '_', '-');
  return "--" + key;
}

/// Sets a value in the settings.
/// @return the value for the file
nlohmann::json ApplyValue(const std::string& key, const std::string& text, BrokerSettings& settings) {
  if (text.size() > kMostSettingBytes) {
    throw InvalidSetting("The setting " + key + " cannot have " + std::to_string(text.size()) +
                         " bytes: it takes " + std::to_string(kMostSettingBytes) + " at most.");
  }
  const SettingRow& row = *FindSettingRow(key);
  nlohmann::json value = text;
  const nlohmann::json kind = row.Get(settings);
  if (kind.is_boolean()) {
    if (text == "yes" || text == "true") value = true;
    if (text == "no" || text == "false") value = false;
  } else if (kind.is_number()) {
    int number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error == std::errc() && end == text.data() + text.size()) value = number;
  }
  if (row.Set(value, settings)) return value;
  const std::string expected =
      value.is_string() && kind.is_boolean() ? "yes or no" : std::string(row.Expected);
  throw InvalidSetting("The setting " + key + " cannot be \"" + text + "\": it takes " + expected + ".");
}

bool Contains(const TypedSettings& changes, const std::string& key) {
  return std::any_of(changes.begin(), changes.end(), [&](const auto& change) { return change.first == key; });
}

/// Reports that the changes are inconsistent, among themselves or with the file, and what to type instead.
[[noreturn]] void RefuseChange(const SettingsFlaw& flaw, const TypedSettings& changes,
                               const std::filesystem::path& file) {
  std::string words = "broker set";
  // If the user has just set the other key, remove this one instead.
  const bool removes = Contains(changes, flaw.OtherKey);
  for (const auto& [key, text] : changes) {
    if (!removes || key != flaw.Key) words += " " + OptionOf(key) + " " + ShellQuoted(text);
  }
  words += " " + (removes ? OptionOf(flaw.Key) + " ''" : flaw.Mend);
  throw InvalidSetting("Nothing is changed: " + flaw.What +
                       ". Type it as a whole: " + TypedCommand(words, FolderOf(file).string()));
}

/// @param before what the file held
/// @throws Failure
BrokerSettings RequireWhole(const std::string& content, const std::optional<std::string>& before,
                            const TypedSettings& changes, const std::filesystem::path& file) {
  try {
    return ParseBrokerSettings(content, file);
  } catch (const Failure&) {
    // Errors that were in the file before are reported with their lines.
    BrokerSettings settings = before ? ParseBrokerSettings(*before, file) : BrokerSettings();
    ApplyTyped(changes, settings);
    if (const auto flaw = FlawOf(settings)) RefuseChange(*flaw, changes, file);
    throw;
  }
}

std::optional<BrokerSettings> UsableSettings(const std::optional<std::string>& text,
                                             const std::filesystem::path& file) {
  if (!text) return std::nullopt;
  try {
    return ParseBrokerSettings(*text, file);
  } catch (const Failure&) {
    return std::nullopt;
  }
}

nlohmann::ordered_json ObjectOf(const std::string& text, const std::filesystem::path& file) {
  try {
    return nlohmann::ordered_json::parse(ParseJsonObject(text).dump());
  } catch (const Failure&) {
    ParseBrokerSettings(text, file);  // throws with the line
    throw;
  }
}

}  // namespace

InvalidSetting::InvalidSetting(const std::string& text) : Failure(EINVAL, text) {}

void ApplyTyped(const TypedSettings& typed, BrokerSettings& settings) {
  for (const auto& [key, text] : typed) ApplyValue(key, text, settings);
}

ChangedSettings ChangeBrokerSettings(const std::filesystem::path& appPath, const TypedSettings& changes) {
  const std::filesystem::path file = BrokerFile(appPath);
  PosixFileSystem files;
  const std::filesystem::path target = files.Resolve(file);
  const std::unique_ptr<LockedFolder> folder = LockFolderOf(files, target);
  const std::optional<std::string> before = ReadBrokerFile(file);
  nlohmann::ordered_json object = before ? ObjectOf(*before, file) : nlohmann::ordered_json::object();
  BrokerSettings probe;
  for (const auto& [key, text] : changes) object[key] = ApplyValue(key, text, probe);
  const std::string content = object.dump(2) + "\n";
  const BrokerSettings now = RequireWhole(content, before, changes, file);
  try {
    ReplaceInLockedFolder(files, target, content);
    folder->Flush();
  } catch (const Failure& failure) {
    throw CannotBeWritten(file, failure);
  }
  return {UsableSettings(before, file), now};
}

}  // namespace keplo::broker
