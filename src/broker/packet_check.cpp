#include "broker/packet_check.h"

#include <mqtt_protocol.h>

#include <algorithm>
#include <cstddef>
#include <optional>

namespace keplo::broker {

namespace {

constexpr int kLongestNumberBytes = 4;

/// Reads the fields of a packet. It is unsound if a field is missing.
class PacketReader {
 public:
  explicit PacketReader(std::string_view bytes) : left_(bytes) {}

  bool IsSound() const { return sound_; }
  std::size_t Left() const { return left_.size(); }

  std::string_view Take(std::size_t count) {
    sound_ = sound_ && count <= left_.size();
    if (!sound_) return {};
    const std::string_view taken = left_.substr(0, count);
    left_.remove_prefix(count);
    return taken;
  }
  std::size_t Byte() {
    const std::string_view byte = Take(1);
    return byte.empty() ? 0 : static_cast<unsigned char>(byte.front());
  }
  void Text() {
    const std::size_t high = Byte();
    Take(high * 256 + Byte());
  }
  /// A number with 7 bits per byte.
  std::size_t Number() {
    std::size_t number = 0;
    for (int i = 0; i < kLongestNumberBytes; ++i) {
      const std::size_t byte = Byte();
      number |= (byte & 0x7f) << (7 * i);
      if (byte < 0x80) return number;
    }
    sound_ = false;
    return 0;
  }
  void Properties() {
    for (PacketReader all(Take(Number())); sound_ && all.Left() > 0; sound_ = all.IsSound()) all.Property();
  }

 private:
  void Property() {
    switch (Number()) {
      case MQTT_PROP_PAYLOAD_FORMAT_INDICATOR:
      case MQTT_PROP_REQUEST_PROBLEM_INFORMATION:
      case MQTT_PROP_REQUEST_RESPONSE_INFORMATION:
      case MQTT_PROP_MAXIMUM_QOS:
      case MQTT_PROP_RETAIN_AVAILABLE:
      case MQTT_PROP_WILDCARD_SUB_AVAILABLE:
      case MQTT_PROP_SUBSCRIPTION_ID_AVAILABLE:
      case MQTT_PROP_SHARED_SUB_AVAILABLE:
        Take(1);
        return;
      case MQTT_PROP_SERVER_KEEP_ALIVE:
      case MQTT_PROP_RECEIVE_MAXIMUM:
      case MQTT_PROP_TOPIC_ALIAS_MAXIMUM:
      case MQTT_PROP_TOPIC_ALIAS:
        Take(2);
        return;
      case MQTT_PROP_MESSAGE_EXPIRY_INTERVAL:
      case MQTT_PROP_SESSION_EXPIRY_INTERVAL:
      case MQTT_PROP_WILL_DELAY_INTERVAL:
      case MQTT_PROP_MAXIMUM_PACKET_SIZE:
        Take(4);
        return;
      case MQTT_PROP_SUBSCRIPTION_IDENTIFIER:
        Number();
        return;
      case MQTT_PROP_USER_PROPERTY:
        Text();
        Text();
        return;
      case MQTT_PROP_CONTENT_TYPE:
      case MQTT_PROP_RESPONSE_TOPIC:
      case MQTT_PROP_CORRELATION_DATA:
      case MQTT_PROP_ASSIGNED_CLIENT_IDENTIFIER:
      case MQTT_PROP_AUTHENTICATION_METHOD:
      case MQTT_PROP_AUTHENTICATION_DATA:
      case MQTT_PROP_RESPONSE_INFORMATION:
      case MQTT_PROP_SERVER_REFERENCE:
      case MQTT_PROP_REASON_STRING:
        Text();
        return;
      default:
        sound_ = false;
    }
  }

  std::string_view left_;
  bool sound_ = true;
};

constexpr unsigned kConnectAnswer = 2, kPublish = 3, kPublishAnswer = 4, kPublishRelease = 6,
                   kPublishComplete = 7, kSubscribeAnswer = 9, kUnsubscribeAnswer = 11, kPingAnswer = 13,
                   kDisconnect = 14, kAuthentication = 15;

constexpr unsigned kReleaseFlags = 2;

unsigned TypeOf(char first) { return static_cast<unsigned char>(first) >> 4U; }

/// Whether a broker may send a packet with this first byte.
bool MayComeFromBroker(char first, int version) {
  const unsigned type = TypeOf(first), flags = static_cast<unsigned char>(first) & 0xfU;
  if (type == kPublish) return true;
  if (flags != (type == kPublishRelease ? kReleaseFlags : 0)) return false;
  if (type >= kPublishAnswer && type <= kPublishComplete) return true;
  switch (type) {
    case kConnectAnswer:
    case kSubscribeAnswer:
    case kUnsubscribeAnswer:
    case kPingAnswer:
      return true;
    case kDisconnect:
    case kAuthentication:
      return version >= 5;
    default:
      return false;
  }
}

/// Checks an MQTT 5 packet up to its properties; the library itself checks the rest.
/// @param body the packet after its length
bool HasSoundProperties(char first, std::string_view body) {
  PacketReader reader(body);
  const unsigned type = TypeOf(first);
  std::size_t before = 2;  // bytes before the properties
  if (type == kPublish) {
    constexpr unsigned kQos = 6;
    reader.Text();
    before = (static_cast<unsigned char>(first) & kQos) != 0 ? 2 : 0;
  } else if (type == kDisconnect || type == kAuthentication) {
    before = 1;
  } else if (type >= kPublishAnswer && type <= kPublishComplete) {
    before = 3;
  } else if (type == kPingAnswer) {
    return true;
  }
  // Short packets omit the properties.
  if (type != kPublish && reader.Left() <= before) return true;
  reader.Take(before);
  reader.Properties();
  return reader.IsSound();
}

/// Whether the body of an MQTT 3.1.1 packet has a length that is possible for its type.
bool HasValidLength(char first, std::size_t body) {
  const unsigned type = TypeOf(first);
  if (type == kPublish) return body >= 2;
  if (type == kSubscribeAnswer) return body >= 3;
  return body == (type == kPingAnswer ? 0 : 2);
}

/// Sizes of the first packet of a stream, in bytes.
struct PacketSize {
  std::size_t Head = 0, Whole = 0;  // the head is type and length
};

/// @return nothing if the head is incomplete
std::optional<PacketSize> SizeOf(std::string_view text) {
  PacketReader reader(text.substr(0, 1 + kLongestNumberBytes));
  reader.Take(1);
  const std::size_t rest = reader.Number();
  if (!reader.IsSound()) return std::nullopt;
  const std::size_t head = std::min<std::size_t>(text.size(), 1 + kLongestNumberBytes) - reader.Left();
  return PacketSize{head, head + rest};
}

}  // namespace

bool PacketCheck::Take(std::string_view bytes) {
  partial_ += bytes;
  std::string_view left = partial_;
  while (!left.empty()) {
    const char first = left.front();
    if (!MayComeFromBroker(first, version_)) return false;
    // The answer to the connection request has to come first.
    if (!connected_ && TypeOf(first) != kConnectAnswer) return false;
    const std::optional<PacketSize> size = SizeOf(left);
    if (!size && left.size() > kLongestNumberBytes) return false;
    if (size && size->Whole > kLongestPacket) return false;
    if (!size || size->Whole > left.size()) break;
    const std::string_view body = left.substr(size->Head, size->Whole - size->Head);
    if (version_ >= 5 ? !HasSoundProperties(first, body) : !HasValidLength(first, body.size())) return false;
    connected_ = true;
    whole_ += left.substr(0, size->Whole);
    left.remove_prefix(size->Whole);
  }
  partial_.erase(0, partial_.size() - left.size());
  return true;
}

}  // namespace keplo::broker
