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

/// A connection to the broker that reconnects by itself, in its own thread, so that neither a slow name
/// lookup nor a hanging broker delays the program. No call blocks, except Finish.
class BrokerLink {
 public:
  /// @param identity of the installation
  /// @param wake called in the other thread when there are reports or messages to take; it must only post
  BrokerLink(const BrokerSettings& settings, const std::string& identity, LinkPurpose purpose,
             std::function<void()> wake);
  ~BrokerLink();
  BrokerLink(const BrokerLink&) = delete;
  BrokerLink& operator=(const BrokerLink&) = delete;

  /// Publishes it now or, without a connection, never.
  void Publish(News news) { mailbox_->Put(std::move(news)); }
  /// The discovery message, published at each connection, and now if it has changed.
  void SetDevice(std::string message) { mailbox_->SetDevice(std::move(message)); }

  std::vector<Incoming> TakeIncoming() { return mailbox_->TakeIncoming(); }
  std::vector<Report> TakeReports() { return mailbox_->TakeReports(); }
  /// How many incoming messages were dropped since the last call, because they came faster than they were
  /// taken.
  std::size_t TakeOverflow() { return mailbox_->TakeOverflow(); }
  /// Publishes that this host is offline and ends the connection; takes a second, rarely two. The last
  /// reports can be taken afterwards. The destructor does the same.
  void Finish();
  /// Starts to end the connection; nothing more is published. Does not block; HasEnded tells when it is done.
  void End() { mailbox_->Close(); }
  bool HasEnded() const { return ended_.wait_for(std::chrono::seconds(0)) == std::future_status::ready; }
  /// Removes what this connection has published when it ends, because the topics will change.
  void ForgetAtEnd(Forgotten what) { mailbox_->ForgetAtEnd(what); }
  bool IsUp() const { return mailbox_->IsUp(); }
  /// Key presses that the broker has confirmed, and those that it did not get.
  std::size_t ConfirmedPresses() const { return mailbox_->ConfirmedPresses(); }
  std::size_t DroppedPresses() const { return mailbox_->DroppedPresses(); }

 private:
  std::shared_ptr<Mailbox> mailbox_;  // outlives this if a name lookup hangs
  std::future<void> ended_;
  std::thread thread_;
};

}  // namespace keplo::broker
