#pragma once

#include <functional>
#include <future>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "broker/broker_settings.h"
#include "broker/mailbox.h"

namespace keplo::broker {

/// A connection to the broker that comes back by itself, in a thread of its own: neither a name that is
/// looked up nor a broker that hangs ever holds the program up. Every call returns at once.
class BrokerLink {
 public:
  /// @param wake runs in the other thread when there are reports or messages to take; it only posts
  BrokerLink(const BrokerSettings& settings, const std::string& identity, std::function<void()> wake);
  /// Tells the broker that this host is offline, for a second at the most, and ends the connection.
  ~BrokerLink();
  BrokerLink(const BrokerLink&) = delete;
  BrokerLink& operator=(const BrokerLink&) = delete;

  /// Tells it now or, without a connection, never.
  void Tell(News news) { mailbox_->Put(std::move(news)); }
  /// The device as it is told at each connection, and now if it is another than before.
  void SetDevice(std::string message) { mailbox_->SetDevice(std::move(message)); }

  std::vector<Incoming> TakeIncoming() { return mailbox_->TakeIncoming(); }
  std::vector<Report> TakeReports() { return mailbox_->TakeReports(); }
  /// Key presses that the broker was not told.
  std::size_t DroppedPresses() const { return mailbox_->DroppedPresses(); }

 private:
  std::shared_ptr<Mailbox> mailbox_;  // outlives this if a name lookup hangs
  std::future<void> ended_;
  std::thread thread_;
};

}  // namespace keplo::broker
