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

/// Stands between the library and its broker, so that nothing but sound packets gets to the library; makes
/// the connection secure where that is asked for. Never waits.
class CheckedWire {
 public:
  /// What In gives for a stream that is no MQTT.
  static constexpr int kNotMqtt = EPROTO;
  /// What In and Out give when there is no secure connection, or no more.
  static constexpr int kNotSecure = EKEYREJECTED;

  /// Takes over the connection of the library, which goes on with one to this under the same number.
  /// @param socket of the library
  /// @throws Failure if the system gives no more sockets, or for files of TLS that cannot be used
  CheckedWire(int socket, int version, const BrokerSettings& settings)
      : CheckedWire(socket, version, settings, Pair()) {}

  /// The connection to the broker, to wait for.
  int Socket() const { return broker_.Number(); }
  /// Whether the broker is to be given something when its socket takes it.
  bool WantsWrite() const { return !out_.empty(); }
  /// Takes in what the broker has sent.
  /// @return 0, or an error of the system's
  int In();
  /// Gives the library what fits.
  /// @return whether there is something for it to read, or the end
  bool HandOn();
  /// Gives the broker what the library has written.
  /// @return 0, or an error of the system's
  int Out();
  /// Why there is no secure connection.
  std::string WhyNotSecure() const { return tls_ ? tls_->Fault() : std::string(); }

 private:
  static std::array<int, 2> Pair();
  CheckedWire(int socket, int version, const BrokerSettings& settings, std::array<int, 2> ends);
  int TakeSaid(std::string_view bytes);
  bool TakeFromLibrary();

  Descriptor broker_, library_;  // the connection, and our end of the library's
  const int socket_;             // the library's end
  std::optional<TlsChannel> tls_;
  PacketCheck check_;
  std::string out_;
  bool ended_ = false;
};

}  // namespace keplo::broker
