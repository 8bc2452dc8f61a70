#pragma once

#include <optional>
#include <string>

#include "broker/broker_settings.h"

namespace keplo::broker {

/// An inconsistency of settings that are valid by themselves.
struct SettingsFlaw {
  std::string Key;       // in the file; empty if it is missing
  std::string What;      // what is wrong
  std::string Expected;  // in the file
  std::string OtherKey;  // the key that would have to be set too
  std::string Mend;      // options of `broker set` that set it
};

/// The first flaw, if there is one.
std::optional<SettingsFlaw> FlawOf(const BrokerSettings& settings);

}  // namespace keplo::broker
