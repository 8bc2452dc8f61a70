#pragma once

#include <filesystem>
#include <string>

#include "broker/broker_settings.h"

namespace keplo::broker {

/// Whether Home Assistant would get a second device. With the same topic it keeps the device and its history,
/// even if the broker has another name, which may refer to the same broker.
bool MovesDevice(const BrokerSettings& before, const BrokerSettings& now);

/// The command that removes the device announced with earlier settings.
std::string ForgetCommand(const BrokerSettings& before, const BrokerSettings& now,
                          const std::filesystem::path& appPath);

/// Removes the device that was announced before the settings changed. A host that was not running at that
/// time could not, because it does not know the old settings.
/// @return what is left for the user to do; empty for nothing
/// @throws Failure for an identity that cannot be read
std::string RemoveFromOldBroker(const BrokerSettings& before, const BrokerSettings& now,
                                const std::filesystem::path& appPath);

}  // namespace keplo::broker
