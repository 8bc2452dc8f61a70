#pragma once

#include <filesystem>
#include <string>

#include "broker/broker_settings.h"

namespace keplo::broker {

/// Whether Home Assistant would have the device twice. Under the same topic it stays, and with it its
/// history, also on a broker of another name, which may be the same one.
bool MovesTheDevice(const BrokerSettings& before, const BrokerSettings& now);

/// The command that takes the device out where earlier settings have told it to a broker.
std::string ForgetCommand(const BrokerSettings& before, const BrokerSettings& now,
                          const std::filesystem::path& appPath);

/// Takes the device out where it was before the settings changed. Nobody else would: a host that did not run
/// meanwhile knows nothing of the old ones.
/// @return what is left to do for a person; empty for nothing
/// @throws Failure for an identity that cannot be read
std::string TakeOutOfOldPlace(const BrokerSettings& before, const BrokerSettings& now,
                              const std::filesystem::path& appPath);

}  // namespace keplo::broker
