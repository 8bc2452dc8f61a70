#pragma once

#include <string>
#include <string_view>

#include "broker/broker_settings.h"

namespace keplo::broker {

/// Why there is no connection, or why it ended.
enum class Trouble {
  NoName,         // the broker's host name is unknown
  Unreachable,    // no answer, or the connection was lost before the broker sent anything
  Tls,            // no secure connection
  OtherProtocol,  // the broker does not support this version of MQTT
  BadLogin,       // user or password
  NotAuthorized,  // not permitted to connect, publish or subscribe
  ClientId,       // the broker refuses the client identifier
  TakenOver,      // another client with the same identifier has connected
  TooLarge,       // the broker refuses messages of this size
  Busy,           // the broker is temporarily unavailable
  Files,          // a local file cannot be used: password, certificate
  Lost            // an established connection has ended
};

/// A failure, with the original text of its source.
struct Refusal {
  Trouble Kind = Trouble::Unreachable;
  std::string Detail;  // from the library, the broker or the system; may be empty
};

/// Detail for a broker that closes the connection before it has sent anything.
inline constexpr std::string_view kHangsUp = "it hangs up";

/// Detail for a stream that is not MQTT.
inline constexpr std::string_view kNotMqtt = "what it sends is no MQTT";

/// Detail for a client key that needs a password.
inline constexpr std::string_view kKeyIsEncrypted = "the key is encrypted";

/// Whether the trouble may end by itself at any time, so that it makes sense to retry soon.
bool IsTemporary(Trouble kind);

/// A message for the user: what happened, and what to do.
std::string TextOf(const Refusal& refusal, const BrokerSettings& settings);

/// Converts the broker's answer to a connection request.
/// @param reason code of MQTT 5, or the return code of 3.1.1
Refusal RefusalOfConnectAnswer(int reason, int protocolVersion);

/// Finds out why a connection failed, from the error and the library's log.
/// @param wasUp whether the connection had been established
Refusal RefusalOfLoss(int error, int systemError, std::string_view logged, bool tls, bool wasUp);

}  // namespace keplo::broker
