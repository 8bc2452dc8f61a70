#pragma once

#include <chrono>
#include <cstddef>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace keplo {

/// What the receiver of a room has told.
struct RoomMessage {
  std::string Topic, Payload;
  bool Retained = false;
  std::chrono::nanoseconds Came{0};  // on the monotonic clock
};

/// The way between a line and the receivers and senders of rooms. No call waits longer than it says.
class RoomMessages {
 public:
  struct News {
    std::vector<RoomMessage> Messages;
    std::size_t Lost = 0;            // messages that came faster than they were taken
    std::vector<std::string> Words;  // for the user: a connection that is lost or back
  };

  virtual ~RoomMessages() = default;

  /// Readable while there is something to take.
  virtual int WakeDescriptor() const = 0;
  virtual News Take() = 0;
  /// Whether the connection is there.
  virtual bool IsUp() const = 0;
  /// Why nothing can come, in one sentence; empty while it can.
  virtual std::string WhyNot() const = 0;
  /// Waits until the message has arrived, for three seconds at most.
  /// @return whether it has; it is not sent later
  virtual bool Publish(const std::string& topic, const std::string& payload) = 0;
  /// Whether a program publishes on that topic the signals that it hears, as we may do too.
  virtual bool IsPublic(const std::string& topic) const = 0;
  /// Whether the messages of that topic are our own.
  virtual bool IsOwn(const std::string& topic) const = 0;
};

/// Begins to take the messages of a filter.
/// @throws Failure if nothing says from where, with what to do
using OpenRoomMessages = std::function<std::unique_ptr<RoomMessages>(const std::string& filter)>;

}  // namespace keplo
