#pragma once

#include <cstddef>
#include <functional>
#include <nlohmann/json_fwd.hpp>
#include <string_view>
#include <vector>

#include "broker/broker_settings.h"

namespace keplo::broker {

/// One key of broker.json: its value as JSON, and how it gets into the settings.
struct SettingRow {
  std::string_view Key, Expected;
  std::function<bool(const nlohmann::json& value, BrokerSettings& settings)>
      Take;  // false if it does not fit
  std::function<nlohmann::json(const BrokerSettings& settings)> Give;
};

/// The longest texts that a topic or a name may be made of; a topic may have 65,535 bytes.
inline constexpr std::size_t kMostSettingBytes = 1024;

/// All keys, in the order of the manual.
const std::vector<SettingRow>& SettingRows();

/// @return null for what is no key
const SettingRow* FindSettingRow(std::string_view key);

}  // namespace keplo::broker
