#pragma once

#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "broker/broker_settings.h"

namespace keplo::broker {

/// The topics of one installation.
class Topics {
 public:
  Topics(const BrokerSettings& settings, const std::string& identity);

  /// "online" and "offline"
  const std::string& Status() const { return status_; }
  std::string Event(std::string_view eventID) const;
  const std::string& Signal() const { return signal_; }
  const std::string& Send() const { return send_; }
  /// Of this installation's device in Home Assistant.
  const std::string& Device() const { return device_; }
  /// Where Home Assistant tells that it has started.
  const std::string& Birth() const { return birth_; }
  /// Where a check of rights may leave a message that nobody takes for anything.
  const std::string& Check() const { return check_; }
  /// Beside the device's, for a message of nothing by which the right to tell Home Assistant is seen.
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

/// The device as Home Assistant gets it: one event entity an event, a receiver and an emitter of infrared
/// signals as the settings have them.
/// @return JSON, valid UTF-8 whatever the names hold
std::string DeviceMessage(const Topics& topics, const BrokerSettings& settings,
                          const std::vector<AnnouncedEvent>& events);

/// The device with those of its components that are there no more, each as the platform alone, by which Home
/// Assistant removes it.
/// @param earlier a message that DeviceMessage has made once
/// @return none if nothing of the earlier one is gone
std::optional<std::string> RemovalMessage(std::string_view earlier, std::string_view now);

}  // namespace keplo::broker
