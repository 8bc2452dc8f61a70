#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "broker/broker_settings.h"

namespace keplo::broker {

/// Settings by their keys in broker.json, as the user types them: switches as yes or no, everything else
/// literally.
using TypedSettings = std::vector<std::pair<std::string, std::string>>;

/// @throws Failure for an invalid value
void ApplyTyped(const TypedSettings& typed, BrokerSettings& settings);

struct ChangedSettings {
  std::optional<BrokerSettings> Before;  // nothing if there was no usable file
  BrokerSettings Now;
};

/// Writes changed settings to broker.json, and keeps the rest of the file.
/// @throws Failure for values that are invalid or inconsistent, which change nothing, or a file that cannot
/// be read or written
ChangedSettings ChangeBrokerSettings(const std::filesystem::path& appPath, const TypedSettings& changes);

}  // namespace keplo::broker
