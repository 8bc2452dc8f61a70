#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "broker/broker_settings.h"
#include "broker/checked_wire.h"

struct mosquitto;

namespace keplo::broker {

/// Notifications of a client, called within Read, Write and KeepAlive.
class ClientEvents {
 public:
  /// @param reason 0 if the broker accepts the connection
  /// @param receiveMaximum QoS 1 messages that may be unconfirmed at the same time
  virtual void OnConnectAnswer(int reason, int receiveMaximum) = 0;
  /// @param reason an MQTT 5 reason code, 0 if the broker gave none
  virtual void OnHangUp(int reason) = 0;
  virtual void OnPublished(int message, int reason) = 0;
  virtual void OnSubscribed(int message, bool granted) = 0;
  virtual void OnUnsubscribed(int message) = 0;
  virtual void OnMessage(std::string_view topic, std::string_view payload, bool retained) = 0;

 protected:
  ~ClientEvents() = default;
};

/// A message to a broker.
struct Publication {
  std::string Topic, Payload;
  bool Retain = false;
  int ExpirySeconds = 0;  // 0 for never; ignored before MQTT 5
};

/// A single connection to a broker. To reconnect, create a new object, so that no old message is sent again.
/// All calls must come from one thread, which polls Socket.
class MosquittoClient {
 public:
  struct Login {
    std::string ClientId, User, Password;
    Publication LastWill;     // none if the topic is empty
    int ProtocolVersion = 5;  // 4 is MQTT 3.1.1
  };

  /// A broker publishes the last will after 1.5 times as much silence, as soon as it checks; mosquitto checks
  /// every six seconds.
  static constexpr int kKeepAliveSeconds = 5;

  /// @param settings, events must outlive the client
  /// @throws Failure for names that the library refuses
  MosquittoClient(const BrokerSettings& settings, const Login& login, ClientEvents& events);
  ~MosquittoClient();
  MosquittoClient(const MosquittoClient&) = delete;
  MosquittoClient& operator=(const MosquittoClient&) = delete;

  // These return an error of the library, 0 for success.
  /// Looks up the name, which may take long, and starts to connect.
  /// @throws Failure for TLS files that cannot be used
  int Connect();
  int Read();
  int Write();
  int KeepAlive();
  int Disconnect();
  /// @param message receives the number that OnPublished will report
  int Publish(const Publication& publication, int& message);
  /// Whose messages to receive. Only MQTT 5 has a choice, and none for shared subscriptions.
  enum class Scope {
    Everybody,  // including our own
    Others,
    OthersAsPublished,  // messages published as retained are marked so even if delivered immediately
  };
  /// Subscribes with QoS 1.
  int Subscribe(const std::string& topic, Scope scope, int& message);
  int Unsubscribe(const std::string& topic, int& message);

  int Socket() const;  // -1 if there is no connection
  bool WantsWrite() const;
  /// Whether there is output that the broker's machine has not acknowledged.
  bool HasUnsent() const;
  /// Makes the system discard unsent output when the connection is closed.
  void DropUnsent();
  /// The errors that the library has logged since the last call.
  std::string TakeLog();
  /// The error number of the last system error.
  int SystemError() const { return systemError_; }

 private:
  struct Callbacks;
  struct Destroy {
    void operator()(mosquitto* client) const;
  };

  int NoteSystemError(int error);
  int LibraryErrorOf(int fault);
  int FlushOutput(int error);

  const BrokerSettings& settings_;
  const int version_;
  ClientEvents& events_;
  std::string log_;
  int systemError_ = 0;
  std::unique_ptr<mosquitto, Destroy> client_;
  std::optional<CheckedWire> wire_;
};

}  // namespace keplo::broker
