#pragma once

#include <chrono>
#include <deque>
#include <functional>
#include <string>
#include <vector>

#include "broker/announcement.h"
#include "broker/broker_link.h"
#include "broker/messages.h"
#include "broker/refusal_tally.h"

namespace keplo::broker {

/// Connects a program to its broker: publishes keys and signals as messages, and turns messages into send
/// requests.
class Bridge {
 public:
  struct Uses {
    std::function<void()> Wake;                    // called in another thread; Serve has to be called then
    std::function<void(const SendRequest&)> Send;  // sends a learned command or lengths; throws Failure
    std::function<void(const Report&)> Log;
  };

  /// Signals published per second; Home Assistant takes no more.
  static constexpr std::size_t kMostSignalsPerSecond = 10;
  /// Requests sent per second; more would leave the line no time to receive.
  static constexpr std::size_t kMostRequestsPerSecond = 2;

  Bridge(BrokerSettings settings, const std::string& identity, Uses uses);
  /// Ends the connection, and logs how many key presses were never published.
  ~Bridge();
  Bridge(const Bridge&) = delete;
  Bridge& operator=(const Bridge&) = delete;

  /// Announces the activated events of the map, unless they are unchanged.
  void SetEvents(std::vector<AnnouncedEvent> events);
  void Publish(KeyEvent event);
  void Publish(HeardSignal signal);
  /// Removes what this connection has published when it ends, because the topics will change.
  void ForgetAtEnd(Forgotten what) { link_.ForgetAtEnd(what); }
  /// Logs the reports of the connection, and carries out requests.
  void Serve();

  /// Whether the connection is established, as far as is known.
  bool IsUp() const { return link_.IsUp(); }
  /// Key presses that the broker has confirmed, and those that it did not get.
  std::size_t ConfirmedPresses() const { return link_.ConfirmedPresses(); }
  std::size_t DroppedPresses() const { return link_.DroppedPresses(); }

 private:
  using Clock = std::chrono::steady_clock;

  /// Counts one more event, unless there have been `most` within the last second.
  /// @return whether it was counted
  static bool IsWithinRate(std::deque<Clock::time_point>& recent, std::size_t most);
  void LogReports();
  void Handle(const Incoming& message);

  const BrokerSettings settings_;
  const Topics topics_;
  const Uses uses_;
  std::vector<AnnouncedEvent> events_;
  bool announced_ = false;
  std::deque<Clock::time_point> signals_, requests_;
  RefusalTally refused_;
  BrokerLink link_;
};

}  // namespace keplo::broker
