#include "broker/broker_link.h"

#include <poll.h>
#include <pthread.h>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <optional>
#include <random>
#include <set>
#include <utility>

#include "broker/announcement.h"
#include "broker/refusal.h"
#include "broker/session.h"
#include "failure.h"

namespace keplo::broker {

namespace {

using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;
using namespace std::chrono_literals;

constexpr milliseconds kFirstWait = 1s;
/// Short if the broker may come back at any time; longer if it has refused us.
constexpr milliseconds kLongestWaitForBroker = 4s, kLongestWaitAfterRefusal = 60s;
/// Two clients with the same name disconnect each other again and again. A connection that lasts longer than
/// this is not affected.
constexpr milliseconds kShortConnection = 10s;
constexpr int kMostShortConnections = 3;
/// Longer than a goodbye. If a name lookup takes longer, its thread is detached.
constexpr milliseconds kLongestEnd = 2s;

/// When a tick wakes this thread, the thread could preempt the tick on a busy machine; a batch thread waits
/// until the tick is over.
void YieldToTicks() {
  const sched_param none{};
  pthread_setschedparam(pthread_self(), SCHED_BATCH, &none);
}

/// Reconnects until the mailbox is closed.
class Connector {
 public:
  Connector(BrokerSettings settings, const std::string& identity, LinkPurpose purpose,
            std::shared_ptr<Mailbox> mailbox)
      : settings_(std::move(settings)),
        topics_(settings_, identity),
        purpose_(std::move(purpose)),
        mailbox_(std::move(mailbox)) {}

  void Run() {
    while (!mailbox_->IsClosed()) {
      std::optional<Clock::time_point> upSince;
      const std::optional<Refusal> refusal = RunSession(purpose_, upSince);
      if (!refusal) return;
      const int version = version_;
      Pause(ReportAndBackOff(*refusal, upSince));
      if (takenOver_ && purpose_.SpeaksForDevice) WaitForOtherHost(version);
    }
  }

 private:
  /// Does not reconnect while another host with the same identity is online.
  /// @param version the protocol version that the broker is known to support
  void WaitForOtherHost(int version) {
    version_ = version;
    LinkPurpose watch;
    watch.ClientId = purpose_.ClientId + "-watch-" + std::to_string(random_());
    watch.SpeaksForDevice = false;
    watch.Topics = {topics_.Status()};
    watch.WatchFor = "offline";
    std::optional<Clock::time_point> upSince;
    const std::optional<Refusal> end = RunSession(watch, upSince);
    if (!end || end->Detail != watch.WatchFor) return;
    reported_.clear();
    tries_ = 0;
  }

  std::optional<Refusal> RunSession(const LinkPurpose& purpose, std::optional<Clock::time_point>& upSince) {
    try {
      MosquittoClient::Login login;
      login.ClientId = purpose.ClientId;
      login.User = settings_.User;
      login.Password = ReadPassword(settings_);
      if (purpose.SpeaksForDevice) login.LastWill = {topics_.Status(), "offline", true};
      login.ProtocolVersion = version_;
      Session session(settings_, topics_, purpose, login, *mailbox_, droppedPresses_);
      if (purpose.WatchFor.empty()) {
        session.WhenUp = [this] { ReportUp(); };
        session.WhenAnswering = [this] { mailbox_->ReportDropped(); };
      }
      auto refusal = session.Run();
      upSince = session.UpSince();
      return refusal;
    } catch (const Failure& failure) {
      return Refusal{Trouble::Files, failure.what()};
    }
  }

  void ReportUp() {
    // While two hosts disconnect each other, this would be reported again and again.
    if (reported_.count(Trouble::TakenOver) > 0) return;
    mailbox_->PutReport({/*IsTrouble=*/false, purpose_.Up});
    mailbox_->ReportDropped();
  }

  /// Reports why the connection ended, unless that was reported already.
  /// @return how long to wait before the next attempt
  milliseconds ReportAndBackOff(Refusal refusal, std::optional<Clock::time_point> upSince) {
    const bool wasShort = upSince && Clock::now() - *upSince < kShortConnection;
    if (upSince) shortConnections_ = wasShort && refusal.Kind == Trouble::Lost ? shortConnections_ + 1 : 0;
    if (wasShort && shortConnections_ >= kMostShortConnections) {
      refusal = {Trouble::TakenOver, ""};
      shortConnections_ = kMostShortConnections;
    }
    takenOver_ = refusal.Kind == Trouble::TakenOver;
    if (upSince && !wasShort) {
      tries_ = 0;
      reported_.clear();
    }
    const bool fallsBack = FallBackToOlderProtocol(refusal, upSince.has_value());
    if (!fallsBack && reported_.insert(refusal.Kind).second) {
      mailbox_->PutReport({/*IsTrouble=*/true,
                           TextOf(refusal, settings_) + " Until it is back, " + purpose_.WhileAway + "."});
    }
    const milliseconds longest = IsTemporary(refusal.Kind) ? kLongestWaitForBroker : kLongestWaitAfterRefusal;
    const milliseconds wait = std::min(longest, kFirstWait * (1 << std::min(tries_++, 6)));
    return fallsBack ? 0ms : WithJitter(wait);
  }

  /// A broker older than MQTT 5 refuses that version or hangs up; then the older version is tried.
  /// @return whether to retry at once
  bool FallBackToOlderProtocol(const Refusal& refusal, bool wasUp) {
    const bool hungUp = refusal.Kind == Trouble::Unreachable && refusal.Detail == kHangsUp;
    const bool isMaybeOld = !wasUp && (refusal.Kind == Trouble::OtherProtocol || hungUp);
    // Later connections begin with MQTT 5 again, because the broker may just have been stopping.
    version_ = isMaybeOld && version_ == 5 ? 4 : 5;
    return version_ == 4;
  }

  milliseconds WithJitter(milliseconds wait) {
    return milliseconds(
        std::uniform_int_distribution<milliseconds::rep>(wait.count() / 2, wait.count())(random_));
  }

  /// Waits, and drops news meanwhile.
  void Pause(milliseconds wait) {
    const Clock::time_point until = Clock::now() + wait;
    while (!mailbox_->IsClosed()) {
      const auto left = std::chrono::ceil<milliseconds>(until - Clock::now());
      if (left <= 0ms) return;
      pollfd watched{mailbox_->WakeDescriptor(), POLLIN, 0};
      poll(&watched, 1, static_cast<int>(left.count()));
      mailbox_->ClearWakeup();
      for (const News& news : mailbox_->TakeNews()) {
        if (news.Type == News::Kind::Press) droppedPresses_.insert(SubjectOf(news));
        mailbox_->CountDropped(news);
      }
    }
  }

  const BrokerSettings settings_;
  const Topics topics_;
  const LinkPurpose purpose_;
  const std::shared_ptr<Mailbox> mailbox_;
  std::set<std::string> droppedPresses_;
  std::minstd_rand random_{std::random_device{}()};
  int version_ = 5;
  int tries_ = 0, shortConnections_ = 0;
  bool takenOver_ = false;      // by another host of the same identity
  std::set<Trouble> reported_;  // since the last long connection
};

}  // namespace

BrokerLink::BrokerLink(const BrokerSettings& settings, const std::string& identity, LinkPurpose purpose,
                       std::function<void()> wake)
    : mailbox_(std::make_shared<Mailbox>(std::move(wake), purpose.MostIncoming)) {
  std::promise<void> ended;
  ended_ = ended.get_future();
  // Signals are handled by the program's own threads.
  sigset_t all, before;
  sigfillset(&all);
  pthread_sigmask(SIG_SETMASK, &all, &before);
  thread_ = std::thread([settings, identity, purpose = std::move(purpose), mailbox = mailbox_,
                         ended = std::move(ended)]() mutable {
    YieldToTicks();
    Connector(settings, identity, std::move(purpose), mailbox).Run();
    ended.set_value();
  });
  pthread_sigmask(SIG_SETMASK, &before, nullptr);
}

BrokerLink::~BrokerLink() { Finish(); }

void BrokerLink::Finish() {
  if (!thread_.joinable()) return;
  mailbox_->Close();
  if (ended_.wait_for(kLongestEnd) == std::future_status::ready) {
    thread_.join();
  } else {
    thread_.detach();
  }
  mailbox_->ReportDropped();
}

}  // namespace keplo::broker
