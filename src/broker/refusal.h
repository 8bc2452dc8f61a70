#pragma once

#include <string>
#include <string_view>

#include "broker/broker_settings.h"

namespace keplo::broker {

/// Why there is no connection, or no longer one.
enum class Trouble {
  NoName,         // the broker's name is not known
  Unreachable,    // nobody answers there, or the connection was lost before the broker said a word
  Tls,            // no secure connection
  OtherProtocol,  // the broker does not know this version of the protocol
  BadLogin,       // user or password
  NotAuthorized,  // no right to connect, publish or subscribe
  ClientId,       // the broker refuses this name
  TakenOver,      // another client of the same name has come
  TooLarge,       // a message that the broker does not take
  Busy,           // the broker cannot just now
  Files,          // a file of ours: password, certificate
  Lost            // the connection was there and is gone
};

/// What has failed, as the library and the broker tell it.
struct Refusal {
  Trouble Kind = Trouble::Unreachable;
  std::string Detail;  // in the words of the library, the broker or the system; may be empty
};

/// Detail of a broker that ends a connection before it has said a word.
inline constexpr std::string_view kHangsUp = "it hangs up";

/// Detail of a stream that is none of MQTT.
inline constexpr std::string_view kNotMqtt = "what it sends is no MQTT";

/// Detail of a client key that cannot be read without a password.
inline constexpr std::string_view kKeyIsEncrypted = "the key is encrypted";

/// Whether to try again soon may help: the broker, or the way to it, may come at any time.
bool MayPassByItself(Trouble kind);

/// One sentence for a person: what happened, and what to do.
std::string TextOf(const Refusal& refusal, const BrokerSettings& settings);

/// The refusal that a broker's answer to a connection means.
/// @param reason of MQTT 5, or the return code of 3.1.1
Refusal RefusalOfConnectAnswer(int reason, int protocolVersion);

/// The refusal behind a connection that broke, from what the library has logged meanwhile.
/// @param wasUp whether the broker had let us in
Refusal RefusalOfLoss(int error, int systemError, std::string_view logged, bool tls, bool wasUp);

}  // namespace keplo::broker
