#pragma once

#include <optional>
#include <string>

#include "broker/broker_settings.h"

namespace keplo::broker {

/// Settings that are sound each and do not go together.
struct SettingsFlaw {
  std::string Key;       // in the file; empty if it is missing
  std::string What;      // what is wrong
  std::string Expected;  // in the file
  std::string OtherKey;  // that would have to be set beside it
  std::string Mend;      // options that set it
};

/// The first flaw, if there is one.
std::optional<SettingsFlaw> FlawOf(const BrokerSettings& settings);

}  // namespace keplo::broker
