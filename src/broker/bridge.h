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

/// Between a program and its broker: makes messages of what happens, and requests of what the broker asks
/// for.
class Bridge {
 public:
  struct Uses {
    std::function<void()> Wake;                    // from another thread: have Serve called
    std::function<void(const SendRequest&)> Send;  // a learned command, or lengths; throws Failure
    std::function<void(const Report&)> Log;
  };

  /// At most so many signals a second are told; Home Assistant takes no more.
  static constexpr std::size_t kMostSignalsPerSecond = 10;
  /// At most so many requests a second are sent, so that the line also hears.
  static constexpr std::size_t kMostRequestsPerSecond = 2;

  Bridge(BrokerSettings settings, const std::string& identity, Uses uses);
  /// Logs what was never told.
  ~Bridge();
  Bridge(const Bridge&) = delete;
  Bridge& operator=(const Bridge&) = delete;

  /// The activated events of the map; nothing happens if they are the ones told before.
  void SetEvents(std::vector<AnnouncedEvent> events);
  void Tell(KeyEvent event);
  void Tell(HeardSignal signal);
  /// As the topics are other ones from then on.
  void ForgetAtEnd(Forgotten what) { link_.ForgetAtEnd(what); }
  /// Logs what the connection reports, and does what the broker asks for.
  void Serve();

  /// Whether the broker has let us in and is there still, as far as is known.
  bool IsUp() const { return link_.IsUp(); }
  /// Key presses that the broker has confirmed, and those that it was not told.
  std::size_t ToldPresses() const { return link_.ToldPresses(); }
  std::size_t DroppedPresses() const { return link_.DroppedPresses(); }

 private:
  using Clock = std::chrono::steady_clock;

  /// Whether one more within a second is few enough; counts it then.
  static bool Fits(std::deque<Clock::time_point>& lately, std::size_t most);
  void LogReports();
  void Take(const Incoming& message);

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
