#include "broker/moved_device.h"

#include "broker/broker_check.h"
#include "broker/identity.h"
#include "failure.h"
#include "typed_command.h"

namespace keplo::broker {

bool MovesDevice(const BrokerSettings& before, const BrokerSettings& now) {
  return before.DiscoveryPrefix != now.DiscoveryPrefix;
}

std::string ForgetCommand(const BrokerSettings& before, const BrokerSettings& now,
                          const std::filesystem::path& appPath) {
  std::string words = "broker forget";
  if (before.Host != now.Host) words += " --host " + ShellQuoted(before.Host);
  if (before.Port != now.Port) words += " --port " + std::to_string(before.Port);
  if (MovesDevice(before, now)) words += " --discovery-prefix " + ShellQuoted(before.DiscoveryPrefix);
  return TypedCommand(words, appPath.string());
}

std::string RemoveFromOldBroker(const BrokerSettings& before, const BrokerSettings& now,
                                const std::filesystem::path& appPath) {
  // Without an identity, nothing has ever been published.
  if (!std::filesystem::exists(IdentityFile(appPath))) return {};
  const std::string command = ForgetCommand(before, now, appPath);
  if (!MovesDevice(before, now)) {
    if (before.Host == now.Host && before.Port == now.Port) return {};
    return "if " + NameOf(now) + " is another broker than " + NameOf(before) +
           ", the device stays on that one, offline; take it out with: " + command;
  }
  try {
    RemoveDevice(before, IdentityOf(appPath));
    return {};
  } catch (const Failure& failure) {
    return "the device stays in Home Assistant under the topics of " + before.DiscoveryPrefix + ". " +
           failure.what() + " When the broker is there, take it out with: " + command;
  }
}

}  // namespace keplo::broker
