#include "broker/broker_check.h"

#include <netdb.h>
#include <poll.h>
#include <sys/socket.h>

#include <cerrno>
#include <chrono>
#include <cstring>
#include <memory>

#include "broker/announcement.h"
#include "broker/conversation.h"
#include "broker/refusal.h"
#include "disk/descriptor.h"
#include "failure.h"

namespace keplo::broker {

namespace {

constexpr const char* kProbe = "probe";
constexpr const char* kTlsStep = "secure connection";
/// Subscribers that expect signals ignore this payload.
constexpr const char* kNoSignal = "null";

struct FreeAddresses {
  void operator()(addrinfo* list) const { freeaddrinfo(list); }
};
using Addresses = std::unique_ptr<addrinfo, FreeAddresses>;

/// @throws Refusal
Addresses LookUp(const BrokerSettings& settings) {
  addrinfo hints{};
  hints.ai_socktype = SOCK_STREAM;
  addrinfo* list = nullptr;
  const int error = getaddrinfo(settings.Host.c_str(), std::to_string(settings.Port).c_str(), &hints, &list);
  if (error != 0) throw Refusal{Trouble::NoName, gai_strerror(error)};
  return Addresses(list);
}

/// @return 0 or the system's error number
int ConnectTo(const addrinfo& address) {
  const Descriptor socket(::socket(address.ai_family, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0));
  if (!socket.IsOpen()) return errno;
  if (connect(socket.Number(), address.ai_addr, address.ai_addrlen) == 0) return 0;
  if (errno != EINPROGRESS) return errno;
  pollfd watched{socket.Number(), POLLOUT, 0};
  constexpr auto kTime = std::chrono::milliseconds(Conversation::kLongestStep).count();
  if (poll(&watched, 1, static_cast<int>(kTime)) == 0) return ETIMEDOUT;
  int error = 0;
  socklen_t size = sizeof error;
  getsockopt(socket.Number(), SOL_SOCKET, SO_ERROR, &error, &size);
  return error;
}

/// @throws Refusal
void TryToConnect(const addrinfo* addresses) {
  int error = 0;
  for (const addrinfo* address = addresses; address != nullptr; address = address->ai_next) {
    error = ConnectTo(*address);
    if (error == 0) return;
  }
  throw Refusal{Trouble::Unreachable, std::strerror(error)};
}

/// Whether the broker itself refused, which implies that the secure connection was established.
bool IsAnswerToLogin(Trouble kind) {
  return kind == Trouble::BadLogin || kind == Trouble::ClientId || kind == Trouble::Busy ||
         kind == Trouble::TooLarge;
}

using ReportStep = std::function<void(const std::string& step, const std::string& result)>;

void CheckHomeAssistantRight(Conversation& conversation, const Topics& topics, const ReportStep& report) {
  const std::string step = "right to tell Home Assistant";
  const std::string retained = conversation.Retained(topics.Device());
  // Publishing the retained message again changes nothing. If there seems to be none, it may only be
  // unreadable, and must not be overwritten.
  if (retained.empty()) conversation.Subscribe(topics.DeviceCheck());
  const bool seen = retained.empty() ? conversation.PublishAndRead({topics.DeviceCheck(), ""})
                                     : conversation.PublishAndRead({topics.Device(), retained, true});
  report(step, seen
                   ? "yes"
                   : "yes, but not to read it back, so that events which are deleted while no host runs stay "
                     "there, and that it starts again may not be heard. Let this user read " +
                         topics.Device() + " and " + topics.Birth() + ".");
}

/// @throws Refusal if nothing is delivered from the topic
void CheckReceiverRight(Conversation& conversation, const std::string& topic, const ReportStep& report) {
  const std::string step = "right to hear " + topic;
  const std::string unseen = "not seen, as this user may not publish there to try it";
  try {
    if (conversation.IsDelivered({topic, kNoSignal})) return report(step, "yes");
  } catch (const Refusal& refusal) {
    if (refusal.Kind != Trouble::NotAuthorized) throw;
    return report(step, unseen);
  }
  // With a 3.1.1 broker it is unknown whether publishing or reading is forbidden.
  if (conversation.Version() < 5) return report(step, unseen + ", or may not read it");
  throw Refusal{Trouble::NotAuthorized, "read " + topic + ", though it may subscribe"};
}

/// Runs the steps, and reports the one that fails.
class BrokerCheck {
 public:
  BrokerCheck(const BrokerSettings& settings, const std::string& identity, const ReportStep& report)
      : settings_(settings), topics_(settings, identity), report_(report) {}

  /// @return whether all steps succeeded
  bool Run(std::span<const CheckedReceivers> receivers) {
    try {
      Connect();
      const auto conversation = Login();
      Subscribe(*conversation, receivers);
      Publish(*conversation);
      step_ = "right to tell Home Assistant";
      CheckHomeAssistantRight(*conversation, topics_, report_);
      CheckReceivers(*conversation, receivers);
      return true;
    } catch (const Refusal& refusal) {
      if (step_ == kTlsStep && IsAnswerToLogin(refusal.Kind)) {
        report_(step_, "yes");
        step_ = "login";
      }
      report_(step_, TextOf(refusal, settings_) + (refusal.Kind == Trouble::Lost ? AdviceOnLoss() : ""));
    } catch (const Failure& failure) {
      report_(step_, failure.what());
    }
    return false;
  }

 private:
  std::string AdviceOnLoss() const {
    return " Look into the broker's log for why it hung up on " + topics_.Node() +
           "-check: it may have stopped, or refuse what this user asks for, or another check may run; then "
           "check again.";
  }

  void Connect() {
    step_ = "name";
    const Addresses addresses = LookUp(settings_);
    report_(step_, "yes");
    step_ = "connection";
    TryToConnect(addresses.get());
    report_(step_, "yes");
  }

  std::unique_ptr<Conversation> Login() {
    step_ = "login";
    static_cast<void>(ReadPassword(settings_));
    if (!settings_.Tls) report_(kTlsStep, "not asked for");
    step_ = settings_.Tls ? kTlsStep : "login";
    auto conversation = LogIn(settings_, topics_);
    if (settings_.Tls) report_(kTlsStep, "yes");
    step_ = "login";
    report_(step_, conversation->Version() == 5 ? "yes, MQTT 5" : "yes, MQTT 3.1.1");
    return conversation;
  }

  void Subscribe(Conversation& conversation, std::span<const CheckedReceivers> receivers) {
    step_ = "right to subscribe";
    for (const std::string& topic : {topics_.Check(), topics_.Device(), topics_.Birth()}) {
      conversation.Subscribe(topic);
    }
    if (settings_.Send) conversation.Subscribe(topics_.Send());
    for (const CheckedReceivers& line : receivers) conversation.Subscribe(line.Filter);
    report_(step_, "yes");
  }

  void Publish(Conversation& conversation) {
    step_ = "right to publish";
    const bool mayRead = conversation.PublishAndRead({topics_.Check(), kProbe});
    report_(step_, "yes");
    if (settings_.Send && !mayRead) {
      step_ = "right to read";
      throw Refusal{Trouble::NotAuthorized, "read " + topics_.Send() + ", though it may subscribe"};
    }
  }

  void CheckReceivers(Conversation& conversation, std::span<const CheckedReceivers> receivers) {
    for (const CheckedReceivers& line : receivers) {
      for (const std::string& topic : line.Topics) {
        step_ = "right to hear " + topic;
        CheckReceiverRight(conversation, topic, report_);
      }
    }
  }

  const BrokerSettings& settings_;
  const Topics topics_;
  const ReportStep& report_;
  std::string step_;
};

}  // namespace

bool CheckBroker(const BrokerSettings& settings, const std::string& identity,
                 std::span<const CheckedReceivers> receivers,
                 const std::function<void(const std::string&, const std::string&)>& report) {
  return BrokerCheck(settings, identity, report).Run(receivers);
}

namespace {

/// @throws Failure
void ClearRetained(std::initializer_list<std::string> topics, const BrokerSettings& settings,
                   const Topics& all) {
  try {
    const auto conversation = LogIn(settings, all);
    for (const std::string& topic : topics) conversation->Publish({topic, "", true});
  } catch (const Refusal& refusal) {
    throw Failure(EIO, TextOf(refusal, settings));
  }
}

}  // namespace

void RemoveDevice(const BrokerSettings& settings, const std::string& identity) {
  const Topics topics(settings, identity);
  ClearRetained({topics.Device()}, settings, topics);
}

void ForgetDevice(const BrokerSettings& settings, const std::string& identity) {
  const Topics topics(settings, identity);
  ClearRetained({topics.Device(), topics.Status()}, settings, topics);
}

}  // namespace keplo::broker
