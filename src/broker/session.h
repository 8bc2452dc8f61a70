#pragma once

#include <chrono>
#include <deque>
#include <functional>
#include <map>
#include <optional>
#include <set>
#include <string>

#include "broker/announcement.h"
#include "broker/link_purpose.h"
#include "broker/mailbox.h"
#include "broker/mosquitto_client.h"
#include "broker/refusal.h"

namespace keplo::broker {

/// One connection from its first packet to its last: tells the device and that it is online, hands on news
/// and what comes in.
///
/// News are told now or never. A broker that has stopped without hanging up would read later what was written
/// to it meanwhile, so it has to answer a question that was put after they were made; what waits longer for
/// that than kFresh is dropped. What then hangs on the way to it, as in a cable that is out, goes with the
/// connection.
class Session : private ClientEvents {
 public:
  static constexpr std::chrono::milliseconds kFresh{1500};

  /// @param purpose what else to take in, and whether this is the connection that speaks for the device
  /// @param pressesUnheard subjects whose last press was dropped, so that what follows it is dropped too;
  /// kept from session to session
  Session(const BrokerSettings& settings, const Topics& topics, const LinkPurpose& purpose,
          const MosquittoClient::Login& login, Mailbox& mailbox, std::set<std::string>& pressesUnheard);
  virtual ~Session();
  Session(const Session&) = delete;
  Session& operator=(const Session&) = delete;

  /// Runs when the broker has let us in and answers.
  std::function<void()> WhenUp;

  /// Runs when the broker answers again after a question.
  std::function<void()> WhenAnswering;

  /// Runs the connection.
  /// @return why it ended; none if the mailbox was closed
  std::optional<Refusal> Run();

  /// Whether the broker has let us in and answers, and since when.
  std::optional<std::chrono::steady_clock::time_point> UpSince() const { return upSince_; }

 private:
  using Clock = std::chrono::steady_clock;
  /// What shows that the broker has not stopped.
  struct SignOfLife {
    std::optional<int> Question;     // on its way
    Clock::time_point Asked, Alive;  // when it was put, and when the last one that was answered
  };
  struct Sent {
    News Told;
    std::string Topic;
  };

  /// The device as the broker has it.
  struct Announced {
    std::string Earlier;                        // at first
    std::string Now;                            // from us
    std::optional<Clock::time_point> DueAgain;  // when all is told again
  };

  void OnConnectAnswer(int reason, int receiveMaximum) override;
  void OnHangUp(int reason) override;
  void OnPublished(int message, int reason) override;
  void OnSubscribed(int message, bool granted) override;
  void OnUnsubscribed(int message) override;
  void OnMessage(std::string_view topic, std::string_view payload, bool retained) override;

  bool IsUp() const { return upSince_.has_value(); }
  /// Waits for the socket, the mailbox or the next thing to do, and serves the socket.
  void Wait();
  std::chrono::milliseconds UntilNextStep() const;
  void Step();
  void StepAside();
  void NoteAnswer();
  void Subscribe(const std::string& topic, MosquittoClient::Scope scope);
  void AnnounceAll();
  void AnnounceDevice(const std::string& message);
  bool RemoveWhatIsGone();
  void Publish(const Publication& publication);
  void TakeNews();
  void SendNews();
  void Ask();
  void SendNow(News news);
  void AbandonWhatHangs();
  void Drop(const News& news);
  void SayGoodbye();
  void Check(int error);
  void TellRefused(const std::string& what, const std::string& topic, const std::string& reason,
                   Trouble kind = Trouble::NotAuthorized);

  const BrokerSettings& settings_;
  const Topics& topics_;
  const LinkPurpose& purpose_;
  Mailbox& mailbox_;
  std::set<std::string>& pressesUnheard_;
  MosquittoClient client_;
  const int version_;
  std::optional<Refusal> refusal_;
  const Clock::time_point begun_ = Clock::now();
  std::optional<Clock::time_point> upSince_;
  Announced device_;
  std::deque<News> waiting_;            // to be told
  SignOfLife life_;                     // which they wait for
  std::map<int, Sent> unconfirmed_;     // by message
  std::map<int, std::string> topicOf_;  // of other messages and subscriptions on their way
  bool seesOther_ = false;              // while it watches for the end of another
  std::size_t mostUnconfirmed_;
  std::set<std::string> toldRefused_;
  Clock::time_point lastKeepAlive_ = begun_, restsUntil_ = begun_;
};

}  // namespace keplo::broker
