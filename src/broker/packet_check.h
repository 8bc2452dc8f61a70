#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace keplo::broker {

/// Passes only complete, valid MQTT packets that a broker may send. The library trusts the broker: it
/// terminates the program for an unknown property, and allocates as much memory as a length claims.
class PacketCheck {
 public:
  /// The broker returns the discovery message; this is enough for ten thousand events.
  static constexpr std::size_t kLongestPacket = 4'000'000;

  /// @param version of MQTT: 5, or 4 for 3.1.1
  explicit PacketCheck(int version) : version_(version) {}

  /// Adds the next bytes of the stream, which may end within a packet.
  /// @return false if the stream is not valid MQTT; it cannot be continued
  bool Take(std::string_view bytes);
  /// The complete packets, for the caller to remove.
  std::string& Whole() { return whole_; }

 private:
  const int version_;
  bool connected_ = false;  // the broker has answered the connection request
  std::string partial_, whole_;
};

}  // namespace keplo::broker
