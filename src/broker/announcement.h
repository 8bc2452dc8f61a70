#pragma once

#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "broker/broker_settings.h"

namespace keplo::broker {

/// The topics of an installation.
class Topics {
 public:
  Topics(const BrokerSettings& settings, const std::string& identity);

  /// Carries "online" or "offline".
  const std::string& Status() const { return status_; }
  std::string Event(std::string_view eventID) const;
  const std::string& Signal() const { return signal_; }
  const std::string& Send() const { return send_; }
  /// The discovery message of this installation's device in Home Assistant.
  const std::string& Device() const { return device_; }
  /// Home Assistant publishes here when it has started.
  const std::string& Birth() const { return birth_; }
  /// Used to check permissions; nobody subscribes to it.
  const std::string& Check() const { return check_; }
  /// Next to the device topic; an empty message here shows whether publishing to Home Assistant is permitted.
  const std::string& DeviceCheck() const { return deviceCheck_; }
  /// "keplo-IDENTITY", the name of the device.
  const std::string& Node() const { return node_; }

 private:
  std::string node_, base_, status_, signal_, send_, device_, birth_, check_, deviceCheck_;
};

/// An activated event of the map.
struct AnnouncedEvent {
  std::string EventID, Name, Command;

  bool operator==(const AnnouncedEvent&) const = default;
};

/// The discovery message of the device: one event entity per event, and an infrared receiver and emitter if
/// the settings enable them.
/// @return JSON, valid UTF-8 whatever the names contain
std::string DeviceMessage(const Topics& topics, const BrokerSettings& settings,
                          const std::vector<AnnouncedEvent>& events);

/// A discovery message that removes obsolete components: it lists each with nothing but its platform, which
/// makes Home Assistant delete it.
/// @param earlier the previous DeviceMessage
/// @return nothing if no component of the earlier message is obsolete
std::optional<std::string> RemovalMessage(std::string_view earlier, std::string_view now);

}  // namespace keplo::broker
