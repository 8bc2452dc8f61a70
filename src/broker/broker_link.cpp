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
/// A broker that may come at any time is looked for often; one that has refused us is left alone.
constexpr milliseconds kLongestWaitForBroker = 4s, kLongestWaitAfterRefusal = 60s;
/// Two clients of one name throw each other off as fast as they come. A connection that lasts longer than
/// this was none of those.
constexpr milliseconds kShortConnection = 10s;
constexpr int kShortConnectionsOfTwins = 3;
/// Longer than a goodbye; a name lookup that takes longer is left to itself.
constexpr milliseconds kLongestEnd = 2s;

/// Woken by a tick, this thread would run in its place on a busy machine; a batch thread waits until the tick
/// is over.
void YieldToTicks() {
  const sched_param none{};
  pthread_setschedparam(pthread_self(), SCHED_BATCH, &none);
}

/// Goes from connection to connection until the mailbox is closed.
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
      Pause(After(*refusal, upSince));
      if (takenOver_ && purpose_.SpeaksForDevice) GiveWay(version);
    }
  }

 private:
  /// Stays away from a host of the same identity until that one has gone.
  /// @param version that the broker is known to speak
  void GiveWay(int version) {
    version_ = version;
    LinkPurpose watch;
    watch.ClientId = purpose_.ClientId + "-watch-" + std::to_string(random_());
    watch.SpeaksForDevice = false;
    watch.Topics = {topics_.Status()};
    watch.WatchFor = "offline";
    std::optional<Clock::time_point> upSince;
    const std::optional<Refusal> end = RunSession(watch, upSince);
    if (!end || end->Detail != watch.WatchFor) return;
    told_.clear();
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
      Session session(settings_, topics_, purpose, login, *mailbox_, pressesUnheard_);
      if (purpose.WatchFor.empty()) {
        session.WhenUp = [this] { TellUp(); };
        session.WhenAnswering = [this] { mailbox_->ReportUntold(); };
      }
      auto refusal = session.Run();
      upSince = session.UpSince();
      return refusal;
    } catch (const Failure& failure) {
      return Refusal{Trouble::Files, failure.what()};
    }
  }

  void TellUp() {
    // Thrown off again and again, the text would come as often.
    if (told_.count(Trouble::TakenOver) > 0) return;
    mailbox_->PutReport({/*IsTrouble=*/false, purpose_.Up});
    mailbox_->ReportUntold();
  }

  /// Tells what has happened, unless it was told already.
  /// @return how long to wait
  milliseconds After(Refusal refusal, std::optional<Clock::time_point> upSince) {
    const bool wasShort = upSince && Clock::now() - *upSince < kShortConnection;
    if (upSince) shortOnes_ = wasShort && refusal.Kind == Trouble::Lost ? shortOnes_ + 1 : 0;
    if (wasShort && shortOnes_ >= kShortConnectionsOfTwins) {
      refusal = {Trouble::TakenOver, ""};
      shortOnes_ = kShortConnectionsOfTwins;
    }
    takenOver_ = refusal.Kind == Trouble::TakenOver;
    if (upSince && !wasShort) {
      tries_ = 0;
      told_.clear();
    }
    const bool known = KnowsOlderProtocol(refusal, upSince.has_value());
    if (!known && told_.insert(refusal.Kind).second) {
      mailbox_->PutReport({/*IsTrouble=*/true,
                           TextOf(refusal, settings_) + " Until it is back, " + purpose_.WhileAway + "."});
    }
    const milliseconds longest =
        MayPassByItself(refusal.Kind) ? kLongestWaitForBroker : kLongestWaitAfterRefusal;
    const milliseconds wait = std::min(longest, kFirstWait * (1 << std::min(tries_++, 6)));
    return known ? 0ms : WithJitter(wait);
  }

  /// A broker of before MQTT 5 refuses it, or hangs up on it; the other version is tried then.
  /// @return whether to try at once
  bool KnowsOlderProtocol(const Refusal& refusal, bool wasUp) {
    const bool hungUp = refusal.Kind == Trouble::Unreachable && refusal.Detail == kHangsUp;
    const bool mayBeOld = !wasUp && (refusal.Kind == Trouble::OtherProtocol || hungUp);
    // A later connection begins with MQTT 5 again: it may have been no more than a broker that was stopped.
    version_ = mayBeOld && version_ == 5 ? 4 : 5;
    return version_ == 4;
  }

  milliseconds WithJitter(milliseconds wait) {
    return milliseconds(
        std::uniform_int_distribution<milliseconds::rep>(wait.count() / 2, wait.count())(random_));
  }

  /// Drops meanwhile what comes.
  void Pause(milliseconds wait) {
    const Clock::time_point until = Clock::now() + wait;
    while (!mailbox_->IsClosed()) {
      const auto left = std::chrono::ceil<milliseconds>(until - Clock::now());
      if (left <= 0ms) return;
      pollfd watched{mailbox_->WakeDescriptor(), POLLIN, 0};
      poll(&watched, 1, static_cast<int>(left.count()));
      mailbox_->Calm();
      for (const News& news : mailbox_->TakeNews()) {
        if (news.Of == News::Kind::Press) pressesUnheard_.insert(SubjectOf(news));
        mailbox_->CountDropped(news);
      }
    }
  }

  const BrokerSettings settings_;
  const Topics topics_;
  const LinkPurpose purpose_;
  const std::shared_ptr<Mailbox> mailbox_;
  std::set<std::string> pressesUnheard_;
  std::minstd_rand random_{std::random_device{}()};
  int version_ = 5;
  int tries_ = 0, shortOnes_ = 0;
  bool takenOver_ = false;  // by another host of the same identity
  std::set<Trouble> told_;  // since a connection lasted
};

}  // namespace

BrokerLink::BrokerLink(const BrokerSettings& settings, const std::string& identity, LinkPurpose purpose,
                       std::function<void()> wake)
    : mailbox_(std::make_shared<Mailbox>(std::move(wake), purpose.MostIncoming)) {
  std::promise<void> ended;
  ended_ = ended.get_future();
  // Signals are the business of the program's own threads.
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
  mailbox_->ReportUntold();
}

}  // namespace keplo::broker
