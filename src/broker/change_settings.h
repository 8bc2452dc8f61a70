#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "broker/broker_settings.h"
#include "failure.h"

namespace keplo::broker {

/// Settings by their keys in broker.json, as the user types them: switches as yes or no, everything else
/// literally.
using TypedSettings = std::vector<std::pair<std::string, std::string>>;

/// A typed value that is invalid, by itself or beside the others; the file is sound.
class InvalidSetting : public Failure {
 public:
  explicit InvalidSetting(const std::string& text);
};

/// @throws InvalidSetting
void ApplyTyped(const TypedSettings& typed, BrokerSettings& settings);

struct ChangedSettings {
  std::optional<BrokerSettings> Before;  // nothing if there was no usable file
  BrokerSettings Now;
};

/// Writes changed settings to broker.json, and keeps the rest of the file.
/// @throws InvalidSetting for values that are invalid or inconsistent, which change nothing
/// @throws Failure for a file that cannot be read or written
ChangedSettings ChangeBrokerSettings(const std::filesystem::path& appPath, const TypedSettings& changes);

}  // namespace keplo::broker
