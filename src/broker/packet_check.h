#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace keplo::broker {

/// Lets through whole packets of MQTT that a broker may send, and nothing else. The library trusts its
/// broker: it ends the whole program at a property that it does not know, and reserves what a length asks
/// for.
class PacketCheck {
 public:
  /// More than the device of ten thousand events, which the broker gives back.
  static constexpr std::size_t kLongestPacket = 4'000'000;

  /// @param version of the protocol, 5 or 4
  explicit PacketCheck(int version) : version_(version) {}

  /// Takes the next bytes of the stream, wherever they end.
  /// @return false for what is no MQTT; nothing after it can be taken
  bool Take(std::string_view bytes);
  /// The whole packets that came and are not taken out.
  std::string& Whole() { return whole_; }

 private:
  const int version_;
  bool answered_ = false;  // our connection
  std::string begun_, whole_;
};

}  // namespace keplo::broker
