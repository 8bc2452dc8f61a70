#pragma once

#include <functional>
#include <span>
#include <string>
#include <vector>

#include "broker/broker_settings.h"

namespace keplo::broker {

/// What a line of this installation listens to.
struct CheckedReceivers {
  std::string Filter;
  std::vector<std::string> Topics;  // those of its topics that are known by their whole names
};

/// Goes the way to the broker step by step: name, connection, secure connection, login, the right to
/// subscribe, to publish, to tell Home Assistant and to hear receivers. Ends where a step fails. What is
/// published for it means nothing to anybody who listens.
/// @param tell gets a line a step: its name, and "yes", what to do or why it cannot be seen
/// @return whether all steps were done
bool CheckBroker(const BrokerSettings& settings, const std::string& identity,
                 std::span<const CheckedReceivers> receivers,
                 const std::function<void(const std::string& step, const std::string& result)>& tell);

/// Takes the device out of Home Assistant; what the broker has of a host that may run stays.
/// @throws Failure if the broker cannot be reached or does not let us
void RemoveDevice(const BrokerSettings& settings, const std::string& identity);

/// Takes the device out of Home Assistant and what is kept of it off the broker.
/// @throws Failure if the broker cannot be reached or does not let us
void ForgetDevice(const BrokerSettings& settings, const std::string& identity);

}  // namespace keplo::broker
