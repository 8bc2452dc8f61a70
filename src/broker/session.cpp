#include "broker/session.h"

#include <mosquitto.h>
#include <mqtt_protocol.h>
#include <poll.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <random>
#include <utility>

#include "broker/messages.h"

namespace keplo::broker {

namespace {

using namespace std::chrono_literals;

constexpr std::chrono::seconds kLongestHandshake{10};
constexpr std::chrono::seconds kKeepAlivePeriod{1};
/// Reading pauses for this time after a flood of messages, which would use all of the processor.
constexpr std::chrono::milliseconds kReadPause{100};
constexpr std::chrono::seconds kLongestGoodbye{1};
/// Unconfirmed messages; most brokers accept at least 20 per client.
constexpr std::size_t kMostUnconfirmed = 16;
constexpr int kNewsExpirySeconds = 5;
/// When Home Assistant starts, all devices of a house announce themselves; a random delay spreads the load.
constexpr int kLeastBirthWaitMs = 500, kMostBirthWaitMs = 4000;

std::chrono::milliseconds BirthWait() {
  std::random_device random;
  return std::chrono::milliseconds(
      std::uniform_int_distribution<int>(kLeastBirthWaitMs, kMostBirthWaitMs)(random));
}

Publication MessageOf(const News& news, const Topics& topics) {
  Publication message;
  if (const auto* key = std::get_if<KeyEvent>(&news.Content)) {
    message = {topics.Event(key->EventID), KeyMessage(*key)};
  } else if (const auto* signal = std::get_if<HeardSignal>(&news.Content)) {
    message = {topics.Signal(), SignalMessage(*signal)};
  } else {
    message = std::get<Publication>(news.Content);
  }
  message.ExpirySeconds = kNewsExpirySeconds;
  return message;
}

}  // namespace

Session::Session(const BrokerSettings& settings, const Topics& topics, const LinkPurpose& purpose,
                 const MosquittoClient::Login& login, Mailbox& mailbox, std::set<std::string>& droppedPresses)
    : settings_(settings),
      topics_(topics),
      purpose_(purpose),
      mailbox_(mailbox),
      droppedPresses_(droppedPresses),
      client_(settings, login, *this),
      version_(login.ProtocolVersion),
      mostUnconfirmed_(kMostUnconfirmed) {}

Session::~Session() { mailbox_.SetUp(false); }

std::optional<Refusal> Session::Run() {
  Check(client_.Connect());
  while (!refusal_ && !mailbox_.IsClosed()) {
    Wait();
    if (!refusal_) Step();
  }
  if (!refusal_ && IsUp() && purpose_.WatchFor.empty()) SayGoodbye();
  for (const News& news : waiting_) Drop(news);
  // These may have arrived, so that repeating them could duplicate them.
  for (const auto& [message, sent] : unconfirmed_) mailbox_.CountDropped(sent.Item);
  if (refusal_ || !unconfirmed_.empty()) client_.DropUnsent();
  return mailbox_.IsClosed() ? std::nullopt : refusal_;
}

std::chrono::milliseconds Session::UntilNextStep() const {
  const Clock::time_point now = Clock::now();
  Clock::time_point next = now + kKeepAlivePeriod;
  if (device_.DueAgain) next = std::min(next, *device_.DueAgain);
  if (now < pausedUntil_) next = std::min(next, pausedUntil_);
  if (!waiting_.empty()) next = std::min(next, waiting_.front().Made + kFresh);
  for (const auto& [message, sent] : unconfirmed_) {
    const Clock::time_point tooLate = sent.Item.Made + kFresh;
    if (tooLate > now) next = std::min(next, tooLate);
  }
  return std::max(std::chrono::ceil<std::chrono::milliseconds>(next - now), 0ms);
}

void Session::Wait() {
  const int socket = client_.Socket();
  const bool rests = Clock::now() < pausedUntil_;
  const auto wanted = static_cast<short>((rests ? 0 : POLLIN) | (client_.WantsWrite() ? POLLOUT : 0));
  std::array<pollfd, 2> watched{{{socket, wanted, 0}, {mailbox_.WakeDescriptor(), POLLIN, 0}}};
  poll(watched.data(), watched.size(), static_cast<int>(UntilNextStep().count()));
  if (watched[1].revents != 0) mailbox_.ClearWakeup();
  if ((watched[0].revents & POLLOUT) != 0) Check(client_.Write());
  if (!refusal_ && (watched[0].revents & (POLLIN | POLLHUP | POLLERR)) != 0) Check(client_.Read());
}

void Session::Step() {
  const Clock::time_point now = Clock::now();
  if (now - lastKeepAlive_ >= kKeepAlivePeriod) {
    lastKeepAlive_ = now;
    Check(client_.KeepAlive());
  }
  if (!IsUp() || !purpose_.WatchFor.empty()) return StepWithoutNews();
  if (device_.DueAgain && now >= *device_.DueAgain) AnnounceAll();
  const std::string device = mailbox_.Device();
  if (device != device_.Now) AnnounceDevice(device);
  TakeNews();
  SendNews();
  GiveUpIfStuck();
}

/// While nothing can be published.
void Session::StepWithoutNews() {
  for (const News& news : mailbox_.TakeNews()) Drop(news);
  if (refusal_ || sawOther_ || Clock::now() - begun_ < kLongestHandshake) return;
  refusal_ = IsUp() ? Refusal{Trouble::Lost, "nobody is seen"}
                    : Refusal{Trouble::Unreachable, "it accepts connections and then says nothing"};
}

void Session::Check(int error) {
  if (error == MOSQ_ERR_SUCCESS || refusal_) return;
  refusal_ = RefusalOfLoss(error, client_.SystemError(), client_.TakeLog(), settings_.Tls, IsUp());
}

void Session::OnConnectAnswer(int reason, int receiveMaximum) {
  if (reason != 0) {
    refusal_ = RefusalOfConnectAnswer(reason, version_);
    return;
  }
  using Scope = MosquittoClient::Scope;
  // The library would queue further messages, and send them when they are obsolete.
  mostUnconfirmed_ = std::min(kMostUnconfirmed, static_cast<std::size_t>(receiveMaximum));
  for (const std::string& topic : purpose_.Topics) Subscribe(topic, Scope::OthersAsPublished);
  if (!purpose_.SpeaksForDevice) return;
  Subscribe(topics_.Birth(), Scope::Others);
  // To find obsolete components that an earlier run has announced.
  Subscribe(topics_.Device(), Scope::Others);
  AnnounceAll();
}

/// Called for the first answer after the connection was accepted: something that merely accepts connections
/// is not a working broker.
void Session::MarkUp() {
  if (IsUp()) return;
  upSince_ = Clock::now();
  mailbox_.SetUp(purpose_.WatchFor.empty());
  if (WhenUp) WhenUp();
}

void Session::OnHangUp(int reason) {
  if (refusal_ || reason == 0) return;
  if (reason == MQTT_RC_SESSION_TAKEN_OVER) {
    refusal_ = Refusal{Trouble::TakenOver, ""};
  } else if (reason == MQTT_RC_PACKET_TOO_LARGE) {
    refusal_ = Refusal{Trouble::TooLarge, ""};
  } else if (reason == MQTT_RC_NOT_AUTHORIZED) {
    refusal_ = Refusal{Trouble::NotAuthorized, mosquitto_reason_string(reason)};
  } else {
    refusal_ = Refusal{Trouble::Lost, mosquitto_reason_string(reason)};
  }
}

void Session::OnPublished(int message, int reason) {
  MarkUp();
  std::string topic;
  if (const auto sent = unconfirmed_.extract(message); !sent.empty()) {
    topic = sent.mapped().Topic;
    if (reason >= MQTT_RC_UNSPECIFIED) {
      mailbox_.CountRefused(sent.mapped().Item);
    } else {
      mailbox_.CountConfirmed(sent.mapped().Item);
    }
  } else if (const auto other = topicOf_.extract(message); !other.empty()) {
    topic = other.mapped();
  }
  if (reason >= MQTT_RC_UNSPECIFIED) ReportRefused("publish to ", topic, mosquitto_reason_string(reason));
}

void Session::OnSubscribed(int message, bool granted) {
  MarkUp();
  const auto topic = topicOf_.extract(message);
  if (!granted && !topic.empty()) ReportRefused("subscribe to ", topic.mapped(), "");
}

void Session::OnUnsubscribed(int message) {
  MarkUp();
  if (probe_.Message != message) return;
  probe_.Message.reset();
  probe_.Answered = probe_.Sent;
  if (WhenAnswering) WhenAnswering();
}

void Session::OnMessage(std::string_view topic, std::string_view payload, bool retained) {
  if (!purpose_.WatchFor.empty()) {
    sawOther_ = true;
    if (payload == purpose_.WatchFor) refusal_ = Refusal{Trouble::Lost, purpose_.WatchFor};
    return;
  }
  if (purpose_.SpeaksForDevice && topic == topics_.Birth()) {
    if (payload == "online" && !retained && !device_.DueAgain) device_.DueAgain = Clock::now() + BirthWait();
    return;
  }
  if (purpose_.SpeaksForDevice && topic == topics_.Device()) {
    if (!retained) return;
    device_.Earlier = payload;
    if (!device_.Now.empty()) RemoveObsoleteComponents();
    return;
  }
  // Taking the mailbox's lock for each message of a flood would delay the ticks.
  if (Clock::now() < pausedUntil_) return mailbox_.CountOverflow();
  // One byte above the limit is enough to refuse the message.
  const bool fits = mailbox_.PutIncoming(
      {std::string(topic), std::string(payload.substr(0, kMostRequestBytes + 1)), retained});
  if (!fits) pausedUntil_ = Clock::now() + kReadPause;
}

void Session::Subscribe(const std::string& topic, MosquittoClient::Scope scope) {
  int message = 0;
  Check(client_.Subscribe(topic, scope, message));
  topicOf_[message] = topic;
}

void Session::Publish(const Publication& publication) {
  int message = 0;
  const int error = client_.Publish(publication, message);
  if (error == MOSQ_ERR_OVERSIZE_PACKET) {
    ReportRefused("take the message for ", publication.Topic,
                  std::to_string(publication.Payload.size()) + " bytes are too many", Trouble::TooLarge);
    return;
  }
  Check(error);
  topicOf_[message] = publication.Topic;
}

void Session::AnnounceAll() {
  device_.DueAgain.reset();
  const std::string device = mailbox_.Device();
  AnnounceDevice(device);
  Publish({topics_.Status(), "online", true});
}

void Session::AnnounceDevice(const std::string& message) {
  if (message.empty()) return;
  if (!device_.Now.empty()) device_.Earlier = device_.Now;
  device_.Now = message;
  if (!RemoveObsoleteComponents()) Publish({topics_.Device(), device_.Now, true});
}

/// Removes obsolete components from Home Assistant.
/// @return whether there were any; then the device was published too
bool Session::RemoveObsoleteComponents() {
  const auto removal = RemovalMessage(device_.Earlier, device_.Now);
  if (!removal) return false;
  Publish({topics_.Device(), *removal, true});
  Publish({topics_.Device(), device_.Now, true});
  return true;
}

void Session::TakeNews() {
  for (News& news : mailbox_.TakeNews()) waiting_.push_back(std::move(news));
}

void Session::SendNews() {
  const Clock::time_point now = Clock::now();
  while (!waiting_.empty() && now - waiting_.front().Made > kFresh) {
    Drop(waiting_.front());
    waiting_.pop_front();
  }
  if (waiting_.empty() || refusal_) return;
  while (!waiting_.empty() && waiting_.front().Made <= probe_.Answered &&
         unconfirmed_.size() + topicOf_.size() < mostUnconfirmed_) {
    News news = std::move(waiting_.front());
    waiting_.pop_front();
    SendNow(std::move(news));
  }
  if (!waiting_.empty() && waiting_.back().Made > probe_.Answered && !probe_.Message) ProbeBroker();
}

void Session::ProbeBroker() {
  int message = 0;
  probe_.Sent = Clock::now();
  // Unsubscribing from an unused topic changes nothing, and every broker answers it for every client.
  Check(client_.Unsubscribe(topics_.Check(), message));
  probe_.Message = message;
}

/// Output that is still stuck would arrive too late.
void Session::GiveUpIfStuck() {
  const Clock::time_point latest = Clock::now() - kFresh;
  const bool hangs = std::any_of(unconfirmed_.begin(), unconfirmed_.end(),
                                 [&](const auto& sent) { return sent.second.Item.Made < latest; });
  if (hangs && client_.HasUnsent()) refusal_ = Refusal{Trouble::Lost, "nothing gets there any more"};
}

void Session::SendNow(News news) {
  if (news.Type == News::Kind::Press) droppedPresses_.erase(SubjectOf(news));
  if (news.Type == News::Kind::AfterPress && droppedPresses_.count(SubjectOf(news)) > 0) return;
  Publication publication = MessageOf(news, topics_);
  int message = 0;
  const int error = client_.Publish(publication, message);
  if (error == MOSQ_ERR_SUCCESS) {
    unconfirmed_.emplace(message, Sent{std::move(news), std::move(publication.Topic)});
    return;
  }
  Drop(news);
  if (error == MOSQ_ERR_OVERSIZE_PACKET) {
    ReportRefused("take the message for ", publication.Topic, "it is too large", Trouble::TooLarge);
  } else {
    Check(error);
  }
}

void Session::Drop(const News& news) {
  if (news.Type == News::Kind::Press) droppedPresses_.insert(SubjectOf(news));
  mailbox_.CountDropped(news);
}

void Session::SayGoodbye() {
  const Clock::time_point until = Clock::now() + kLongestGoodbye;
  const auto serveUntil = [&](const auto& done) {
    for (SendNews(); !refusal_ && !done() && Clock::now() < until; SendNews()) Wait();
  };
  TakeNews();
  // The last release has to come before the offline status.
  serveUntil([&] { return waiting_.empty(); });
  int last = 0;
  if (purpose_.SpeaksForDevice) {
    const Forgotten forgets = mailbox_.ForgetsAtEnd();
    if (forgets.Device) Publish({topics_.Device(), "", true});
    Check(client_.Publish({topics_.Status(), forgets.Status ? "" : "offline", true}, last));
    topicOf_[last] = topics_.Status();
  }
  serveUntil([&] { return topicOf_.count(last) == 0 && unconfirmed_.empty(); });
  client_.Disconnect();
  if (client_.WantsWrite()) client_.Write();
}

void Session::ReportRefused(const std::string& what, const std::string& topic, const std::string& reason,
                            Trouble kind) {
  if (!reportedRefusals_.insert(what + topic).second) return;
  std::string detail = what + topic;
  if (!reason.empty()) detail += ": " + reason;
  mailbox_.PutReport({/*IsTrouble=*/true, TextOf({kind, detail}, settings_)});
}

}  // namespace keplo::broker
