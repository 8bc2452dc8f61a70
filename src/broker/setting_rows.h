#pragma once

#include <cstddef>
#include <functional>
#include <nlohmann/json_fwd.hpp>
#include <string_view>
#include <vector>

#include "broker/broker_settings.h"

namespace keplo::broker {

/// A key of broker.json, and how its value is read and written.
struct SettingRow {
  std::string_view Key, Expected;
  /// Returns false if the value is invalid.
  std::function<bool(const nlohmann::json& value, BrokerSettings& settings)> Set;
  std::function<nlohmann::json(const BrokerSettings& settings)> Get;
};

/// Leaves room for the rest of a topic, which is limited to 65,535 bytes.
inline constexpr std::size_t kMostSettingBytes = 1024;

/// All keys, in the order of the manual.
const std::vector<SettingRow>& SettingRows();

/// @return null if there is no such key
const SettingRow* FindSettingRow(std::string_view key);

}  // namespace keplo::broker
