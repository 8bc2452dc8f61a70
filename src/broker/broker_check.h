#pragma once

#include <functional>
#include <span>
#include <string>

#include "broker/broker_settings.h"

namespace keplo::broker {

/// Goes the way to the broker step by step: name, connection, secure connection, login, the right to
/// subscribe, to publish and to tell Home Assistant. Ends where a step fails.
/// @param filters of topics that lines of this installation listen to
/// @param tell gets a line a step: its name, and "yes" or what to do
/// @return whether all steps were done
bool CheckBroker(const BrokerSettings& settings, const std::string& identity,
                 std::span<const std::string> filters,
                 const std::function<void(const std::string& step, const std::string& result)>& tell);

/// Takes the device out of Home Assistant and what is kept of it off the broker.
/// @throws Failure if the broker cannot be reached or does not let us
void ForgetDevice(const BrokerSettings& settings, const std::string& identity);

}  // namespace keplo::broker
