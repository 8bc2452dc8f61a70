#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "broker/broker_settings.h"

namespace keplo::broker {

/// Settings by their keys in broker.json, each as a person types it: names, paths and prefixes as they stand,
/// a port as a number, switches as yes or no.
using TypedSettings = std::vector<std::pair<std::string, std::string>>;

/// @throws Failure for a value that does not fit
void TakeTyped(const TypedSettings& typed, BrokerSettings& settings);

struct ChangedSettings {
  std::optional<BrokerSettings> Before;  // none if there was no file, or none that could be used
  BrokerSettings Now;
};

/// Writes changed settings to broker.json; what the file has besides stays.
/// @throws Failure for values that do not fit or do not go together, which change nothing, or a file that
/// cannot be read or written
ChangedSettings ChangeBrokerSettings(const std::filesystem::path& appPath, const TypedSettings& changes);

}  // namespace keplo::broker
