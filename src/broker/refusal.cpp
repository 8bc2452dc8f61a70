#include "broker/refusal.h"

#include <mosquitto.h>
#include <mqtt_protocol.h>

#include <cstring>

namespace keplo::broker {

namespace {

bool Says(std::string_view logged, std::string_view words) {
  return logged.find(words) != std::string_view::npos;
}

std::string AboutTls(const std::string& detail, const BrokerSettings& settings) {
  if (Says(detail, kKeyIsEncrypted)) {
    return "the key in " + settings.Key +
           " is encrypted, and nobody is there to type its password. Write it without one, for your eyes "
           "alone: openssl pkey -in " +
           settings.Key + " -out FILE, chmod 600 FILE, and set \"key\" to FILE.";
  }
  if (Says(detail, "host name verification")) {
    return "its certificate is for another name than " + settings.Host +
           "; set \"host\" to the name that the certificate has.";
  }
  if (Says(detail, "expired")) {
    return "a certificate has expired; renew it, and look whether the clock of this machine is right.";
  }
  if (Says(detail, "certificate required") || Says(detail, "handshake failure")) {
    return "the broker asks for a client certificate, or refuses ours; set \"certificate\" and \"key\" to "
           "those that it knows.";
  }
  if (Says(detail, "unknown ca")) {
    return "the broker does not know who signed our certificate; set \"certificate\" to one that it knows.";
  }
  const bool isOfUnknown = Says(detail, "self-signed") || Says(detail, "unable to get");
  if (Says(detail, "certificate verify failed: ") && !isOfUnknown && !Says(detail, "not yet valid")) {
    return "its certificate cannot be accepted (" + detail.substr(detail.rfind(": ") + 2) +
           "); have it made anew for a server of today.";
  }
  if (Says(detail, "certificate verify failed")) {
    return (settings.Ca.empty() ? "none of the system's authorities vouches for it"
                                : "the authority in " + settings.Ca + " does not vouch for it") +
           "; set \"ca\" to the certificate of the authority that signed the broker's, and look whether one "
           "of the two has expired and whether the clock of this machine is right.";
  }
  if (Says(detail, "wrong version number") || Says(detail, "packet length too long")) {
    return "what answers there does not speak TLS; set \"port\" to the broker's TLS port, or \"tls\" to "
           "false.";
  }
  return (detail.empty() ? "the broker gave no reason" : detail) +
         ". Does a TLS broker listen on that port? \"tls\" and \"port\" belong together.";
}

}  // namespace

bool IsTemporary(Trouble kind) {
  switch (kind) {
    case Trouble::NoName:
    case Trouble::Unreachable:
    case Trouble::Busy:
    case Trouble::OtherProtocol:
    case Trouble::Lost:
      return true;
    case Trouble::Tls:
    case Trouble::BadLogin:
    case Trouble::NotAuthorized:
    case Trouble::ClientId:
    case Trouble::TakenOver:
    case Trouble::TooLarge:
    case Trouble::Files:
      return false;
  }
  return true;
}

std::string TextOf(const Refusal& refusal, const BrokerSettings& settings) {
  const std::string broker = "The broker at " + NameOf(settings);
  const std::string because = refusal.Detail.empty() ? "" : " (" + refusal.Detail + ")";
  switch (refusal.Kind) {
    case Trouble::NoName:
      return "The name " + settings.Host + " of the broker is not known" + because +
             ". Look at \"host\", or whether the network is there.";
    case Trouble::Unreachable:
      return broker + " does not answer" + because +
             ". Is it running, and is the port right? A TLS port needs \"tls\": true, and a port for "
             "websockets cannot be used.";
    case Trouble::Tls:
      return "No secure connection to " + NameOf(settings) + ": " + AboutTls(refusal.Detail, settings);
    case Trouble::OtherProtocol:
      return broker + " speaks neither MQTT 5 nor MQTT 3.1.1" + because +
             ". Is the port right? A TLS port needs \"tls\": true, and a port for websockets cannot be used.";
    case Trouble::BadLogin:
      return broker + " refuses user and password" + because +
             ". Set \"user\" and \"password_file\" to what it knows.";
    case Trouble::NotAuthorized:
      return broker + " does not let " +
             (settings.User.empty() ? std::string("a client without a user") : "user " + settings.User) +
             " do that" + because + ". Allow it in the broker's access list, or set another \"user\".";
    case Trouble::ClientId:
      return broker + " refuses the client's name" + because + ". Set \"client_id\" to one that it takes.";
    case Trouble::TakenOver:
      return "Another program throws this one off the broker: it has the same identity. If an installation "
             "was copied, remove broker.id of the copy; run one host per installation.";
    case Trouble::TooLarge:
      return broker + " does not take so large a message" + because +
             ". Raise its limit (mosquitto: max_packet_size), or announce fewer events.";
    case Trouble::Busy:
      return broker + " cannot serve us now" + because + ".";
    case Trouble::Files:
      return refusal.Detail;
    case Trouble::Lost:
      return "The connection to " + NameOf(settings) + " was lost" + because + ".";
  }
  return {};
}

Refusal RefusalOfConnectAnswer(int reason, int protocolVersion) {
  if (protocolVersion < 5) {
    switch (reason) {
      case CONNACK_REFUSED_PROTOCOL_VERSION:
        return {Trouble::OtherProtocol, ""};
      case CONNACK_REFUSED_IDENTIFIER_REJECTED:
        return {Trouble::ClientId, ""};
      case CONNACK_REFUSED_SERVER_UNAVAILABLE:
        return {Trouble::Busy, ""};
      case CONNACK_REFUSED_BAD_USERNAME_PASSWORD:
        return {Trouble::BadLogin, ""};
      // A 3.1.1 broker also returns this for a wrong password.
      case CONNACK_REFUSED_NOT_AUTHORIZED:
        return {Trouble::BadLogin, mosquitto_connack_string(reason)};
      default:
        return {Trouble::Busy, mosquitto_connack_string(reason)};
    }
  }
  switch (reason) {
    case CONNACK_REFUSED_PROTOCOL_VERSION:  // a 3.1.1 broker uses its own codes
    case MQTT_RC_UNSUPPORTED_PROTOCOL_VERSION:
      return {Trouble::OtherProtocol, ""};
    case MQTT_RC_CLIENTID_NOT_VALID:
      return {Trouble::ClientId, ""};
    case MQTT_RC_BAD_USERNAME_OR_PASSWORD:
      return {Trouble::BadLogin, ""};
    case MQTT_RC_NOT_AUTHORIZED:
    case MQTT_RC_BAD_AUTHENTICATION_METHOD:
    case MQTT_RC_BANNED:
      return {Trouble::BadLogin, mosquitto_reason_string(reason)};
    case MQTT_RC_PACKET_TOO_LARGE:
      return {Trouble::TooLarge, ""};
    default:
      return {Trouble::Busy, mosquitto_reason_string(reason)};
  }
}

Refusal RefusalOfLoss(int error, int systemError, std::string_view logged, bool tls, bool wasUp) {
  if (error == MOSQ_ERR_EAI || error == MOSQ_ERR_LOOKUP) return {Trouble::NoName, std::string(logged)};
  if (error == MOSQ_ERR_OVERSIZE_PACKET) return {Trouble::TooLarge, ""};
  if (Says(logged, kNotMqtt)) {
    return {wasUp ? Trouble::Lost : Trouble::OtherProtocol, std::string(kNotMqtt)};
  }
  if (wasUp) {
    const bool said = error == MOSQ_ERR_ERRNO && systemError != 0;
    return {Trouble::Lost, said ? std::strerror(systemError) : ""};
  }
  const bool tlsError = error == MOSQ_ERR_TLS || error == MOSQ_ERR_TLS_HANDSHAKE || Says(logged, "SSL");
  if (tls && (tlsError || !logged.empty())) return {Trouble::Tls, std::string(logged)};
  if (error == MOSQ_ERR_ERRNO && systemError != 0) return {Trouble::Unreachable, std::strerror(systemError)};
  return {Trouble::Unreachable, std::string(error == MOSQ_ERR_CONN_LOST ? kHangsUp : logged)};
}

}  // namespace keplo::broker
