#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "broker/broker_settings.h"
#include "broker/checked_wire.h"

struct mosquitto;

namespace keplo::broker {

/// What a client hears from its broker; runs inside Read, Write and KeepAlive.
class ClientEvents {
 public:
  /// @param reason 0 if the broker lets us in
  /// @param receiveMaximum messages at QoS 1 that the broker takes at once before it has confirmed them
  virtual void OnConnectAnswer(int reason, int receiveMaximum) = 0;
  /// @param reason of MQTT 5, 0 if the broker gave none
  virtual void OnHangUp(int reason) = 0;
  virtual void OnPublished(int message, int reason) = 0;
  virtual void OnSubscribed(int message, bool granted) = 0;
  virtual void OnUnsubscribed(int message) = 0;
  virtual void OnMessage(std::string_view topic, std::string_view payload, bool retained) = 0;

 protected:
  ~ClientEvents() = default;
};

/// One message to a broker.
struct Publication {
  std::string Topic, Payload;
  bool Retain = false;
  int ExpirySeconds = 0;  // 0 for never; MQTT 5 alone knows it
};

/// One connection to a broker, from its beginning to its end: whoever connects again makes a new one, so that
/// nothing of the old one is ever sent again. All calls come from one thread, which waits for Socket.
class MosquittoClient {
 public:
  struct Login {
    std::string ClientId, User, Password;
    Publication LastWill;     // none without a topic
    int ProtocolVersion = 5;  // 4 is MQTT 3.1.1
  };

  /// Longest silence before a sign of life, seconds. A broker tells our last will after 1.5 times that, when
  /// it looks, as mosquitto does each six seconds.
  static constexpr int kKeepAliveSeconds = 5;

  /// @param settings, events outlive it
  /// @throws Failure for names that the library does not take
  MosquittoClient(const BrokerSettings& settings, const Login& login, ClientEvents& events);
  ~MosquittoClient();
  MosquittoClient(const MosquittoClient&) = delete;
  MosquittoClient& operator=(const MosquittoClient&) = delete;

  // Each gives an error of the library, 0 for none.
  /// Looks up the name, which may take its time, and begins to connect.
  /// @throws Failure for files of TLS that cannot be used
  int Connect();
  int Read();
  int Write();
  int KeepAlive();
  int Disconnect();
  /// @param message written with the number by which OnPublished tells it
  int Publish(const Publication& publication, int& message);
  /// Whose messages to take, and how; MQTT 5 alone gives a choice, and none for a topic that is shared.
  enum class Scope {
    Everybody,  // also what we publish ourselves
    Others,
    OthersAsPublished,  // what was published as a message to keep counts as retained also when it comes at
                        // once
  };
  /// At QoS 1.
  int Subscribe(const std::string& topic, Scope scope, int& message);
  int Unsubscribe(const std::string& topic, int& message);

  int Socket() const;  // -1 without a connection
  bool WantsWrite() const;
  /// Whether something was written that the machine of the broker has not taken.
  bool HasUntaken() const;
  /// At its end the connection is cut, so that the system does not go on to send what it has still to send.
  void DropUntaken();
  /// What the library has logged as errors since the last call, and the system's number beside an error.
  std::string TakeLog();
  int SystemError() const { return systemError_; }

 private:
  struct Callbacks;
  struct Destroy {
    void operator()(mosquitto* client) const;
  };

  int Noted(int error);
  int ErrorOf(int fault);
  int WithOutput(int error);

  const BrokerSettings& settings_;
  const int version_;
  ClientEvents& events_;
  std::string log_;
  int systemError_ = 0;
  std::unique_ptr<mosquitto, Destroy> client_;
  std::optional<CheckedWire> wire_;
};

}  // namespace keplo::broker
