#pragma once

#include <chrono>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <string_view>

#include "broker/announcement.h"
#include "broker/broker_settings.h"
#include "broker/mosquitto_client.h"
#include "broker/refusal.h"

namespace keplo::broker {

/// A short connection with blocking calls, for checks and single changes. They throw a Refusal if they fail.
class Conversation final : private ClientEvents {
 public:
  /// The broker has to answer each call within this time.
  static constexpr std::chrono::seconds kLongestStep{10};

  /// Connects and logs in.
  /// @param settings outlives this
  /// @param version of MQTT: 5, or 4 for 3.1.1
  Conversation(const BrokerSettings& settings, const Topics& topics, int version);
  virtual ~Conversation();
  Conversation(const Conversation&) = delete;
  Conversation& operator=(const Conversation&) = delete;

  void Subscribe(const std::string& topic);
  void Publish(const Publication& publication);
  /// Publishes to a subscribed topic, and checks whether the message is delivered: a broker may grant a
  /// subscription to a topic that may not be read, and then deliver nothing.
  bool IsDelivered(const Publication& publication);
  /// Like IsDelivered, for a topic that need not be readable. If publishing is not permitted, an MQTT 5
  /// broker refuses, but a 3.1.1 broker confirms and drops the message, so that delivery is the only proof.
  bool PublishAndRead(const Publication& publication);

  int Version() const { return version_; }
  /// The retained message of a subscribed topic; empty if there is none.
  std::string Retained(const std::string& topic) const;

 private:
  using Condition = std::function<bool()>;

  void OnConnectAnswer(int reason, int receiveMaximum) override;
  void OnHangUp(int reason) override;
  void OnPublished(int message, int reason) override;
  void OnSubscribed(int message, bool granted) override;
  void OnUnsubscribed(int /*message*/) override {}
  void OnMessage(std::string_view topic, std::string_view payload, bool retained) override;

  void Check(int error);
  void Await(const Condition& condition);
  bool WaitFor(std::chrono::seconds longest, const Condition& condition);

  const BrokerSettings& settings_;
  const int version_;
  bool isUp_ = false, granted_ = false;
  std::set<std::string> received_;
  std::map<std::string, std::string> retained_;
  int answered_ = 0, reason_ = 0;
  std::optional<Refusal> refusal_;
  MosquittoClient client_;
};

/// Connects with MQTT 5 or, if the broker does not support it, with 3.1.1.
/// @throws Refusal
std::unique_ptr<Conversation> LogIn(const BrokerSettings& settings, const Topics& topics);

}  // namespace keplo::broker
