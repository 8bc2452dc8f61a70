#include "broker/conversation.h"

#include <mosquitto.h>
#include <mqtt_protocol.h>
#include <poll.h>

namespace keplo::broker {

namespace {

constexpr std::chrono::seconds kLongestDelivery{2};

MosquittoClient::Login LoginOf(const BrokerSettings& settings, const Topics& topics, int version) {
  MosquittoClient::Login login;
  // Not the host's name: the broker would disconnect the host.
  login.ClientId = topics.Node() + "-check";
  login.User = settings.User;
  login.Password = ReadPassword(settings);
  login.ProtocolVersion = version;
  return login;
}

}  // namespace

Conversation::Conversation(const BrokerSettings& settings, const Topics& topics, int version)
    : settings_(settings), version_(version), client_(settings, LoginOf(settings, topics, version), *this) {
  Check(client_.Connect());
  Await([this] { return isUp_; });
}

Conversation::~Conversation() {
  client_.Disconnect();
  if (client_.WantsWrite()) client_.Write();
}

void Conversation::Subscribe(const std::string& topic) {
  int message = 0;
  // Includes our own messages: their absence shows that the broker silently drops what is not permitted.
  Check(client_.Subscribe(topic, MosquittoClient::Scope::Everybody, message));
  Await([&] { return answered_ == message; });
  if (!granted_) throw Refusal{Trouble::NotAuthorized, "subscribe to " + topic};
}

void Conversation::Publish(const Publication& publication) {
  int message = 0;
  Check(client_.Publish(publication, message));
  Await([&] { return answered_ == message; });
  if (reason_ >= MQTT_RC_UNSPECIFIED) {
    throw Refusal{Trouble::NotAuthorized,
                  "publish to " + publication.Topic + ": " + mosquitto_reason_string(reason_)};
  }
}

bool Conversation::IsDelivered(const Publication& publication) {
  received_.erase(publication.Topic);
  Publish(publication);
  return WaitFor(kLongestDelivery, [&] { return received_.count(publication.Topic) > 0; });
}

bool Conversation::PublishAndRead(const Publication& publication) {
  const bool came = IsDelivered(publication);
  if (came || version_ >= 5) return came;
  throw Refusal{Trouble::NotAuthorized, "publish to " + publication.Topic + ", or read it"};
}

std::string Conversation::Retained(const std::string& topic) const {
  const auto retained = retained_.find(topic);
  return retained == retained_.end() ? std::string() : retained->second;
}

void Conversation::OnConnectAnswer(int reason, int /*receiveMaximum*/) {
  if (reason == 0) {
    isUp_ = true;
  } else {
    refusal_ = RefusalOfConnectAnswer(reason, version_);
  }
}

void Conversation::OnHangUp(int reason) {
  if (reason != 0 && !refusal_) refusal_ = Refusal{Trouble::Lost, mosquitto_reason_string(reason)};
}

void Conversation::OnPublished(int message, int reason) {
  answered_ = message;
  reason_ = reason;
}

void Conversation::OnSubscribed(int message, bool granted) {
  answered_ = message;
  granted_ = granted;
}

void Conversation::OnMessage(std::string_view topic, std::string_view payload, bool retained) {
  received_.emplace(topic);
  if (retained) retained_[std::string(topic)] = payload;
}

void Conversation::Check(int error) {
  if (error == MOSQ_ERR_SUCCESS || refusal_) return;
  refusal_ = RefusalOfLoss(error, client_.SystemError(), client_.TakeLog(), settings_.Tls, isUp_);
}

void Conversation::Await(const Condition& condition) {
  if (!WaitFor(kLongestStep, condition)) throw Refusal{Trouble::Unreachable, "it says nothing"};
}

bool Conversation::WaitFor(std::chrono::seconds longest, const Condition& condition) {
  const auto until = std::chrono::steady_clock::now() + longest;
  for (bool isLast = false; !refusal_ && !condition();) {
    if (isLast) return false;
    // After a suspension, answers that have arrived meanwhile still count.
    isLast = std::chrono::steady_clock::now() > until;
    pollfd watched{client_.Socket(), static_cast<short>(client_.WantsWrite() ? POLLIN | POLLOUT : POLLIN), 0};
    poll(&watched, 1, isLast ? 0 : 100);
    if ((watched.revents & POLLOUT) != 0) Check(client_.Write());
    if (!refusal_ && (watched.revents & ~POLLOUT) != 0) Check(client_.Read());
  }
  if (refusal_) throw *refusal_;
  return true;
}

std::unique_ptr<Conversation> LogIn(const BrokerSettings& settings, const Topics& topics) {
  for (int version = 5;; version = 4) {
    try {
      return std::make_unique<Conversation>(settings, topics, version);
    } catch (const Refusal& refusal) {
      const bool isOld = refusal.Kind == Trouble::OtherProtocol ||
                         (refusal.Kind == Trouble::Unreachable && refusal.Detail == kHangsUp);
      if (version == 4 || !isOld) throw;
    }
  }
}

}  // namespace keplo::broker
