#pragma once

#include <chrono>
#include <functional>
#include <future>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "broker/broker_settings.h"
#include "broker/link_purpose.h"
#include "broker/mailbox.h"

namespace keplo::broker {

/// A connection to the broker that comes back by itself, in a thread of its own: neither a name that is
/// looked up nor a broker that hangs ever holds the program up. Every call returns at once.
class BrokerLink {
 public:
  /// @param identity of the installation
  /// @param wake runs in the other thread when there are reports or messages to take; it only posts
  BrokerLink(const BrokerSettings& settings, const std::string& identity, LinkPurpose purpose,
             std::function<void()> wake);
  ~BrokerLink();
  BrokerLink(const BrokerLink&) = delete;
  BrokerLink& operator=(const BrokerLink&) = delete;

  /// Tells it now or, without a connection, never.
  void Tell(News news) { mailbox_->Put(std::move(news)); }
  /// The device as it is told at each connection, and now if it is another than before.
  void SetDevice(std::string message) { mailbox_->SetDevice(std::move(message)); }

  std::vector<Incoming> TakeIncoming() { return mailbox_->TakeIncoming(); }
  std::vector<Report> TakeReports() { return mailbox_->TakeReports(); }
  /// How many messages came faster than they were taken, and were dropped, since this was asked last.
  std::size_t TakeOverflow() { return mailbox_->TakeOverflow(); }
  /// Tells the broker that this host is offline, for a second at most, and ends the connection, as the end of
  /// this does. The last reports can be taken then.
  void Finish();
  /// Begins to end the connection; nothing more is told. Who waits for HasEnded is not held up by the end.
  void End() { mailbox_->Close(); }
  bool HasEnded() const { return ended_.wait_for(std::chrono::seconds(0)) == std::future_status::ready; }
  /// As the topics are other ones from then on.
  void ForgetAtEnd(Forgotten what) { mailbox_->ForgetAtEnd(what); }
  bool IsUp() const { return mailbox_->IsUp(); }
  /// Key presses that the broker has confirmed, and those that it was not told.
  std::size_t ToldPresses() const { return mailbox_->ToldPresses(); }
  std::size_t DroppedPresses() const { return mailbox_->DroppedPresses(); }

 private:
  std::shared_ptr<Mailbox> mailbox_;  // outlives this if a name lookup hangs
  std::future<void> ended_;
  std::thread thread_;
};

}  // namespace keplo::broker
