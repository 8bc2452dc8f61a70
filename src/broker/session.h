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

/// A connection from its first packet to its last: announces the device and that it is online, publishes
/// news, and passes on incoming messages.
///
/// News are published at once or never. A broker that is stopped, but not disconnected, would later read
/// everything that was sent meanwhile. Therefore news wait until the broker has answered a probe that was
/// sent after they were created; they are dropped if that takes longer than kFresh. If sent news are stuck on
/// the way, for instance because a cable is unplugged, the connection is discarded with them.
class Session : private ClientEvents {
 public:
  static constexpr std::chrono::milliseconds kFresh{1500};

  /// @param droppedPresses subjects whose last press was dropped, so that the following news are dropped too;
  /// kept between sessions
  Session(const BrokerSettings& settings, const Topics& topics, const LinkPurpose& purpose,
          const MosquittoClient::Login& login, Mailbox& mailbox, std::set<std::string>& droppedPresses);
  virtual ~Session();
  Session(const Session&) = delete;
  Session& operator=(const Session&) = delete;

  /// Called when the connection is established and the broker answers.
  std::function<void()> WhenUp;

  /// Called when the broker has answered a probe.
  std::function<void()> WhenAnswering;

  /// Runs the connection.
  /// @return why it ended; nothing if the mailbox was closed
  std::optional<Refusal> Run();

  /// When the broker first answered on the established connection.
  std::optional<std::chrono::steady_clock::time_point> UpSince() const { return upSince_; }

 private:
  using Clock = std::chrono::steady_clock;
  /// A request whose answer shows that the broker has not stopped.
  struct Probe {
    std::optional<int> Message;        // its number, until it is answered
    Clock::time_point Sent, Answered;  // when it was sent, and when the last answered one was sent
  };
  struct Sent {
    News Item;
    std::string Topic;
  };

  /// The discovery message of the device.
  struct Announced {
    std::string Earlier;                        // the previous one
    std::string Now;                            // the one published last
    std::optional<Clock::time_point> DueAgain;  // when to announce everything again
  };

  void OnConnectAnswer(int reason, int receiveMaximum) override;
  void OnHangUp(int reason) override;
  void OnPublished(int message, int reason) override;
  void OnSubscribed(int message, bool granted) override;
  void OnUnsubscribed(int message) override;
  void OnMessage(std::string_view topic, std::string_view payload, bool retained) override;

  bool IsUp() const { return upSince_.has_value(); }
  /// Waits for the socket, the mailbox or the time of the next step, and serves the socket.
  void Wait();
  std::chrono::milliseconds UntilNextStep() const;
  void Step();
  void StepWithoutNews();
  void MarkUp();
  void Subscribe(const std::string& topic, MosquittoClient::Scope scope);
  void AnnounceAll();
  void AnnounceDevice(const std::string& message);
  bool RemoveObsoleteComponents();
  void Publish(const Publication& publication);
  void TakeNews();
  void SendNews();
  void ProbeBroker();
  void SendNow(News news);
  void GiveUpIfStuck();
  void Drop(const News& news);
  void SayGoodbye();
  void Check(int error);
  void ReportRefused(const std::string& what, const std::string& topic, const std::string& reason,
                     Trouble kind = Trouble::NotAuthorized);

  const BrokerSettings& settings_;
  const Topics& topics_;
  const LinkPurpose& purpose_;
  Mailbox& mailbox_;
  std::set<std::string>& droppedPresses_;
  MosquittoClient client_;
  const int version_;
  std::optional<Refusal> refusal_;
  const Clock::time_point begun_ = Clock::now();
  std::optional<Clock::time_point> upSince_;
  Announced device_;
  std::deque<News> waiting_;  // to be published after the next answer
  Probe probe_;
  std::map<int, Sent> unconfirmed_;     // by message number
  std::map<int, std::string> topicOf_;  // other unconfirmed messages and subscriptions
  bool sawOther_ = false;               // the host that is watched for was online
  std::size_t mostUnconfirmed_;
  std::set<std::string> reportedRefusals_;
  Clock::time_point lastKeepAlive_ = begun_, pausedUntil_ = begun_;
};

}  // namespace keplo::broker
