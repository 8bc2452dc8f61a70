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

/// Takes a value into the settings.
/// @return the value as it stands in the file
nlohmann::json TakeValue(const std::string& key, const std::string& text, BrokerSettings& settings) {
  if (text.size() > kMostSettingBytes) {
    throw Failure(EINVAL, "The setting " + key + " cannot have " + std::to_string(text.size()) +
                              " bytes: it takes " + std::to_string(kMostSettingBytes) + " at most.");
  }
  const SettingRow& row = *FindSettingRow(key);
  nlohmann::json value = text;
  const nlohmann::json kind = row.Give(settings);
  if (kind.is_boolean()) {
    if (text == "yes" || text == "true") value = true;
    if (text == "no" || text == "false") value = false;
  } else if (kind.is_number()) {
    int number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error == std::errc() && end == text.data() + text.size()) value = number;
  }
  if (row.Take(value, settings)) return value;
  const std::string expected =
      value.is_string() && kind.is_boolean() ? "yes or no" : std::string(row.Expected);
  throw Failure(EINVAL, "The setting " + key + " cannot be \"" + text + "\": it takes " + expected + ".");
}

bool AreIn(const TypedSettings& changes, const std::string& key) {
  return std::any_of(changes.begin(), changes.end(), [&](const auto& change) { return change.first == key; });
}

/// What was typed does not go with itself or with the file: says what to type instead.
[[noreturn]] void RefuseChange(const SettingsFlaw& flaw, const TypedSettings& changes,
                               const std::filesystem::path& file) {
  std::string words = "broker set";
  // What goes beside it may just have been said otherwise; then it goes itself.
  const bool goes = AreIn(changes, flaw.OtherKey);
  for (const auto& [key, text] : changes) {
    if (!goes || key != flaw.Key) words += " " + OptionOf(key) + " " + ShellQuoted(text);
  }
  words += " " + (goes ? OptionOf(flaw.Key) + " ''" : flaw.Mend);
  throw Failure(EINVAL, "Nothing is changed: " + flaw.What +
                            ". Type it as a whole: " + TypedCommand(words, FolderOf(file).string()));
}

/// @param before what the file held
/// @throws Failure
BrokerSettings RequireWhole(const std::string& content, const std::optional<std::string>& before,
                            const TypedSettings& changes, const std::filesystem::path& file) {
  try {
    return ParseBrokerSettings(content, file);
  } catch (const Failure&) {
    // What was wrong in the file before is told with the lines that it has.
    BrokerSettings settings = before ? ParseBrokerSettings(*before, file) : BrokerSettings();
    TakeTyped(changes, settings);
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
    ParseBrokerSettings(text, file);  // says where
    throw;
  }
}

}  // namespace

void TakeTyped(const TypedSettings& typed, BrokerSettings& settings) {
  for (const auto& [key, text] : typed) TakeValue(key, text, settings);
}

ChangedSettings ChangeBrokerSettings(const std::filesystem::path& appPath, const TypedSettings& changes) {
  const std::filesystem::path file = BrokerFile(appPath);
  PosixFileSystem files;
  const std::filesystem::path target = files.Resolve(file);
  const std::unique_ptr<LockedFolder> folder = LockFolderOf(files, target);
  const std::optional<std::string> before = ReadBrokerFile(file);
  nlohmann::ordered_json object = before ? ObjectOf(*before, file) : nlohmann::ordered_json::object();
  BrokerSettings probe;
  for (const auto& [key, text] : changes) object[key] = TakeValue(key, text, probe);
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
