#include "broker/mosquitto_client.h"

#include <linux/sockios.h>
#include <mosquitto.h>
#include <mqtt_protocol.h>
#include <sys/ioctl.h>
#include <sys/socket.h>

#include <cerrno>
#include <new>
#include <utility>

#include "broker/refusal.h"
#include "failure.h"

namespace keplo::broker {

namespace {

/// Initialises the library once for the lifetime of the program.
void SetUpLibrary() {
  struct Library {
    Library() { mosquitto_lib_init(); }
    ~Library() { mosquitto_lib_cleanup(); }
  };
  static const Library library;
}

const char* NameOrNull(const std::string& text) { return text.empty() ? nullptr : text.c_str(); }

void Require(int error, const std::string& what) {
  if (error != MOSQ_ERR_SUCCESS) throw Failure(EINVAL, what + ": " + mosquitto_strerror(error) + ".");
}

struct FreeProperties {
  void operator()(mosquitto_property* list) const { mosquitto_property_free_all(&list); }
};

constexpr int kRefusedSubscription = 128;

}  // namespace

/// The library's callbacks. They must not throw.
struct MosquittoClient::Callbacks {
  static MosquittoClient& Of(void* self) { return *static_cast<MosquittoClient*>(self); }

  static void Set(mosquitto* client) {
    mosquitto_connect_v5_callback_set(
        client, [](mosquitto*, void* self, int reason, int /*flags*/, const mosquitto_property* properties) {
          std::uint16_t most = UINT16_MAX;
          mosquitto_property_read_int16(properties, MQTT_PROP_RECEIVE_MAXIMUM, &most, /*skip_first=*/false);
          Of(self).events_.OnConnectAnswer(reason, most);
        });
    mosquitto_disconnect_v5_callback_set(
        client, [](mosquitto*, void* self, int reason, const mosquitto_property*) {
          // Smaller numbers are errors of the library.
          Of(self).events_.OnHangUp(reason >= MQTT_RC_UNSPECIFIED ? reason : 0);
        });
    mosquitto_publish_v5_callback_set(
        client, [](mosquitto*, void* self, int message, int reason, const mosquitto_property*) {
          Of(self).events_.OnPublished(message, reason);
        });
    mosquitto_subscribe_v5_callback_set(client, [](mosquitto*, void* self, int message, int count,
                                                   const int* granted, const mosquitto_property*) {
      Of(self).events_.OnSubscribed(message, count > 0 && granted[0] < kRefusedSubscription);
    });
    mosquitto_unsubscribe_v5_callback_set(client,
                                          [](mosquitto*, void* self, int message, const mosquitto_property*) {
                                            Of(self).events_.OnUnsubscribed(message);
                                          });
    mosquitto_message_v5_callback_set(
        client, [](mosquitto*, void* self, const mosquitto_message* message, const mosquitto_property*) {
          Of(self).events_.OnMessage(
              message->topic,
              {static_cast<const char*>(message->payload), static_cast<std::size_t>(message->payloadlen)},
              message->retain);
        });
    mosquitto_log_callback_set(client, [](mosquitto*, void* self, int level, const char* text) {
      constexpr std::size_t kMostLog = 1000;
      std::string& log = Of(self).log_;
      if ((level & MOSQ_LOG_ERR) == 0 || log.size() > kMostLog) return;
      log += (log.empty() ? "" : "; ") + std::string(text);
    });
  }
};

void MosquittoClient::Destroy::operator()(mosquitto* client) const { mosquitto_destroy(client); }

MosquittoClient::MosquittoClient(const BrokerSettings& settings, const Login& login, ClientEvents& events)
    : settings_(settings), version_(login.ProtocolVersion), events_(events) {
  SetUpLibrary();
  client_.reset(mosquitto_new(login.ClientId.c_str(), /*clean_session=*/true, this));
  if (!client_) throw std::bad_alloc();
  Callbacks::Set(client_.get());
  mosquitto_int_option(client_.get(), MOSQ_OPT_PROTOCOL_VERSION, version_);
  mosquitto_int_option(client_.get(), MOSQ_OPT_TCP_NODELAY, 1);
  Require(mosquitto_username_pw_set(client_.get(), NameOrNull(login.User), NameOrNull(login.Password)),
          "The user of the broker cannot be used");
  if (!login.LastWill.Topic.empty()) {
    Require(mosquitto_will_set(client_.get(), login.LastWill.Topic.c_str(),
                               static_cast<int>(login.LastWill.Payload.size()), login.LastWill.Payload.data(),
                               1, login.LastWill.Retain),
            "The topic " + login.LastWill.Topic + " cannot be used");
  }
}

MosquittoClient::~MosquittoClient() = default;

int MosquittoClient::NoteSystemError(int error) {
  if (error == MOSQ_ERR_ERRNO) systemError_ = errno;
  return error;
}

int MosquittoClient::Connect() {
  errno = 0;
  // In threaded mode the library sends nothing yet, so that everything goes through the wire.
  mosquitto_threaded_set(client_.get(), true);
  const int error = NoteSystemError(mosquitto_connect_bind_async(client_.get(), settings_.Host.c_str(),
                                                                 settings_.Port, kKeepAliveSeconds, nullptr));
  mosquitto_threaded_set(client_.get(), false);
  if (error != MOSQ_ERR_SUCCESS) return error;
  wire_.emplace(mosquitto_socket(client_.get()), version_, settings_);
  return Write();
}

/// The library error that corresponds to an error of the wire.
int MosquittoClient::LibraryErrorOf(int fault) {
  switch (fault) {
    case 0:
      return MOSQ_ERR_SUCCESS;
    case CheckedWire::kNotMqtt:
      log_ = kNotMqtt;
      return MOSQ_ERR_MALFORMED_PACKET;
    case CheckedWire::kNotSecure:
      log_ = wire_->WhyNotSecure();
      return MOSQ_ERR_TLS;
    default:
      systemError_ = fault;
      return MOSQ_ERR_ERRNO;
  }
}

/// Sends the output of a library call.
int MosquittoClient::FlushOutput(int error) {
  const int fault = wire_ ? wire_->Out() : 0;
  return error == MOSQ_ERR_SUCCESS ? LibraryErrorOf(fault) : error;
}

int MosquittoClient::Read() {
  if (!wire_) return MOSQ_ERR_NO_CONN;
  if (const int fault = wire_->In(); fault != 0) {
    wire_->Out();
    return LibraryErrorOf(fault);
  }
  int error = MOSQ_ERR_SUCCESS;
  while (error == MOSQ_ERR_SUCCESS && wire_->PassToLibrary())
    error = NoteSystemError(mosquitto_loop_read(client_.get(), 1));
  return FlushOutput(error);
}

int MosquittoClient::Write() { return FlushOutput(NoteSystemError(mosquitto_loop_write(client_.get(), 1))); }
int MosquittoClient::KeepAlive() { return FlushOutput(NoteSystemError(mosquitto_loop_misc(client_.get()))); }
int MosquittoClient::Disconnect() { return FlushOutput(mosquitto_disconnect(client_.get())); }

int MosquittoClient::Publish(const Publication& publication, int& message) {
  mosquitto_property* list = nullptr;
  if (version_ >= 5 && publication.ExpirySeconds > 0) {
    mosquitto_property_add_int32(&list, MQTT_PROP_MESSAGE_EXPIRY_INTERVAL,
                                 static_cast<std::uint32_t>(publication.ExpirySeconds));
  }
  const std::unique_ptr<mosquitto_property, FreeProperties> properties(list);
  return FlushOutput(mosquitto_publish_v5(
      client_.get(), &message, publication.Topic.c_str(), static_cast<int>(publication.Payload.size()),
      publication.Payload.data(), 1, publication.Retain, properties.get()));
}

int MosquittoClient::Subscribe(const std::string& topic, Scope scope, int& message) {
  int options = 0;
  if (version_ >= 5 && scope == Scope::OthersAsPublished) options = MQTT_SUB_OPT_RETAIN_AS_PUBLISHED;
  const bool mayChoose = version_ >= 5 && !topic.starts_with("$share/");
  if (mayChoose && scope != Scope::Everybody) options |= MQTT_SUB_OPT_NO_LOCAL;
  return FlushOutput(mosquitto_subscribe_v5(client_.get(), &message, topic.c_str(), 1, options, nullptr));
}

int MosquittoClient::Unsubscribe(const std::string& topic, int& message) {
  return FlushOutput(mosquitto_unsubscribe(client_.get(), &message, topic.c_str()));
}

int MosquittoClient::Socket() const { return wire_ ? wire_->Socket() : mosquitto_socket(client_.get()); }
bool MosquittoClient::WantsWrite() const {
  return mosquitto_want_write(client_.get()) || (wire_ && wire_->WantsWrite());
}

bool MosquittoClient::HasUnsent() const {
  int bytes = 0;
  return (wire_ && wire_->WantsWrite()) || (ioctl(Socket(), SIOCOUTQ, &bytes) == 0 && bytes > 0);
}

void MosquittoClient::DropUnsent() {
  const linger none{1, 0};
  setsockopt(Socket(), SOL_SOCKET, SO_LINGER, &none, sizeof none);
}

std::string MosquittoClient::TakeLog() { return std::exchange(log_, {}); }

}  // namespace keplo::broker
