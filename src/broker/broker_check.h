#pragma once

#include <functional>
#include <span>
#include <string>
#include <vector>

#include "broker/broker_settings.h"

namespace keplo::broker {

/// A subscription of one of this installation's lines.
struct CheckedReceivers {
  std::string Filter;
  std::vector<std::string> Topics;  // the matching topics whose full names are known
};

/// Checks the way to the broker step by step: name, connection, secure connection, login, the permissions to
/// subscribe, to publish, to publish to Home Assistant and to receive from receivers. Stops at the first step
/// that fails. The messages that it publishes are ignored by all subscribers.
/// @param report called for each step with its name, and "yes", what to do, or why it cannot be checked
/// @return whether all steps succeeded
bool CheckBroker(const BrokerSettings& settings, const std::string& identity,
                 std::span<const CheckedReceivers> receivers,
                 const std::function<void(const std::string& step, const std::string& result)>& report);

/// Removes the device from Home Assistant, but keeps the status topic, because a host may be running.
/// @throws Failure if the broker cannot be reached or refuses
void RemoveDevice(const BrokerSettings& settings, const std::string& identity);

/// Removes the device from Home Assistant, and its retained messages from the broker.
/// @throws Failure if the broker cannot be reached or refuses
void ForgetDevice(const BrokerSettings& settings, const std::string& identity);

}  // namespace keplo::broker
