#pragma once

#include <array>
#include <cerrno>
#include <optional>
#include <string>
#include <string_view>

#include "broker/broker_settings.h"
#include "broker/packet_check.h"
#include "broker/tls_channel.h"
#include "disk/descriptor.h"

namespace keplo::broker {

/// Sits between the MQTT library and the broker, so that only valid packets reach the library; adds TLS if
/// configured. Never blocks.
class CheckedWire {
 public:
  /// Returned by In for a stream that is not MQTT.
  static constexpr int kNotMqtt = EPROTO;
  /// Returned by In and Out if there is no secure connection, or if it was lost.
  static constexpr int kNotSecure = EKEYREJECTED;

  /// Takes over the library's connection, and gives the library one end of a socket pair under the same
  /// descriptor.
  /// @param socket the library's descriptor
  /// @throws Failure if there are no more sockets, or for TLS files that cannot be used
  CheckedWire(int socket, int version, const BrokerSettings& settings)
      : CheckedWire(socket, version, settings, Pair()) {}

  /// The connection to the broker, for poll.
  int Socket() const { return broker_.Number(); }
  /// Whether there is output that waits until the socket can be written.
  bool WantsWrite() const { return !out_.empty(); }
  /// Reads what the broker has sent.
  /// @return 0, or an error number
  int In();
  /// Passes as much to the library as its socket takes.
  /// @return whether the library has something to read, or the end of the stream
  bool PassToLibrary();
  /// Sends what the library has written.
  /// @return 0, or an error number
  int Out();
  /// Why there is no secure connection.
  std::string WhyNotSecure() const { return tls_ ? tls_->Fault() : std::string(); }

 private:
  static std::array<int, 2> Pair();
  CheckedWire(int socket, int version, const BrokerSettings& settings, std::array<int, 2> ends);
  int CheckReceived(std::string_view bytes);
  bool CollectOutput();

  Descriptor broker_, library_;  // the connection, and our end of the library's
  const int socket_;             // the library's end
  std::optional<TlsChannel> tls_;
  PacketCheck check_;
  std::string out_;
  bool ended_ = false;
};

}  // namespace keplo::broker
