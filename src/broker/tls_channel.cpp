#include "broker/tls_channel.h"

#include <arpa/inet.h>
#include <openssl/err.h>
#include <openssl/ssl.h>
#include <openssl/x509v3.h>

#include <array>
#include <cerrno>
#include <new>

#include "broker/refusal.h"
#include "failure.h"

namespace keplo::broker {

namespace {

/// The folder of Debian's ca-certificates.
constexpr const char* kSystemAuthorities = "/etc/ssl/certs";

/// Without this, OpenSSL would ask at the terminal, and block a host that runs in the background.
int GiveNoPassword(char* /*password*/, int /*size*/, int /*writing*/, void* wasAsked) {
  if (wasAsked != nullptr) *static_cast<bool*>(wasAsked) = true;
  return 0;
}

bool IsAddress(const std::string& host) {
  in6_addr address{};
  return inet_pton(AF_INET, host.c_str(), &address) == 1 || inet_pton(AF_INET6, host.c_str(), &address) == 1;
}

bool SaysOtherKey(unsigned long error) {
  const int reason = ERR_GET_REASON(error);
  return (ERR_GET_LIB(error) == ERR_LIB_X509 && reason == X509_R_KEY_VALUES_MISMATCH) ||
         (ERR_GET_LIB(error) == ERR_LIB_SSL && reason == SSL_R_NO_CERTIFICATE_ASSIGNED);
}

[[noreturn]] void RefuseFiles(const BrokerSettings& settings) {
  std::string names;
  for (const auto* name : {&settings.Ca, &settings.Certificate, &settings.Key}) {
    if (!name->empty()) names += (names.empty() ? "" : ", ") + *name;
  }
  ERR_clear_error();
  throw Failure(EINVAL, "The files for a secure connection cannot be read: " + names +
                            ". Look at \"ca\", \"certificate\" and \"key\", and who may read them.");
}

}  // namespace

void TlsChannel::Free::operator()(ssl_ctx_st* context) const { SSL_CTX_free(context); }
void TlsChannel::Free::operator()(ssl_st* connection) const { SSL_free(connection); }

TlsChannel::TlsChannel(const BrokerSettings& settings)
    : host_(settings.Host), context_(SSL_CTX_new(TLS_client_method())) {
  if (!context_) throw std::bad_alloc();
  SSL_CTX_set_min_proto_version(context_.get(), TLS1_2_VERSION);
  SSL_CTX_set_verify(context_.get(), SSL_VERIFY_PEER, nullptr);
  const char* const ca = settings.Ca.empty() ? nullptr : settings.Ca.c_str();
  if (SSL_CTX_load_verify_locations(context_.get(), ca, ca == nullptr ? kSystemAuthorities : nullptr) != 1) {
    RefuseFiles(settings);
  }
  if (!settings.Certificate.empty()) UseOwnCertificate(settings);
  if (fault_.empty()) StartHandshake();
}

void TlsChannel::UseOwnCertificate(const BrokerSettings& settings) {
  bool askedForPassword = false;
  SSL_CTX_set_default_passwd_cb(context_.get(), GiveNoPassword);
  SSL_CTX_set_default_passwd_cb_userdata(context_.get(), &askedForPassword);
  const bool usable =
      SSL_CTX_use_certificate_chain_file(context_.get(), settings.Certificate.c_str()) == 1 &&
      SSL_CTX_use_PrivateKey_file(context_.get(), settings.Key.c_str(), SSL_FILETYPE_PEM) == 1 &&
      SSL_CTX_check_private_key(context_.get()) == 1;
  SSL_CTX_set_default_passwd_cb_userdata(context_.get(), nullptr);
  if (askedForPassword) {
    ERR_clear_error();
    fault_ = kKeyIsEncrypted;
  } else if (!usable && SaysOtherKey(ERR_peek_last_error())) {
    ERR_clear_error();
    throw Failure(EINVAL, "The key in " + settings.Key + " does not belong to the certificate in " +
                              settings.Certificate + ". Set \"key\" to the one that it was made with.");
  } else if (!usable) {
    RefuseFiles(settings);
  }
}

void TlsChannel::StartHandshake() {
  connection_.reset(SSL_new(context_.get()));
  if (!connection_) throw std::bad_alloc();
  SSL_set_bio(connection_.get(), BIO_new(BIO_s_mem()), BIO_new(BIO_s_mem()));
  // A broker with several certificates chooses one by this name.
  if (!IsAddress(host_)) SSL_set_tlsext_host_name(connection_.get(), host_.c_str());
  SSL_set_connect_state(connection_.get());
  ContinueHandshake();
}

bool TlsChannel::Receive(std::string_view encrypted) {
  if (!fault_.empty()) return false;
  BIO_write(SSL_get_rbio(connection_.get()), encrypted.data(), static_cast<int>(encrypted.size()));
  if (!up_) ContinueHandshake();
  if (up_) Decrypt();
  return fault_.empty();
}

bool TlsChannel::Send(std::string_view plain) {
  if (!fault_.empty()) return false;
  ERR_clear_error();
  // Writing to memory is always complete.
  if (SSL_write(connection_.get(), plain.data(), static_cast<int>(plain.size())) <= 0) SetFault();
  CollectEncrypted();
  return fault_.empty();
}

/// Takes the next step of the handshake.
void TlsChannel::ContinueHandshake() {
  ERR_clear_error();
  const int done = SSL_do_handshake(connection_.get());
  if (done == 1) {
    up_ = MatchesHostName();
    if (!up_) fault_ = "host name verification failed";
  } else if (SSL_get_error(connection_.get(), done) != SSL_ERROR_WANT_READ) {
    SetFault();
  }
  CollectEncrypted();
}

void TlsChannel::Decrypt() {
  std::array<char, SSL3_RT_MAX_PLAIN_LENGTH> piece;
  ERR_clear_error();
  int count = 0;
  while ((count = SSL_read(connection_.get(), piece.data(), piece.size())) > 0) {
    plain_.append(piece.data(), static_cast<std::size_t>(count));
  }
  const int error = SSL_get_error(connection_.get(), count);
  ended_ = error == SSL_ERROR_ZERO_RETURN;
  if (error != SSL_ERROR_WANT_READ && !ended_) SetFault();
  // The broker may have requested new keys.
  CollectEncrypted();
}

/// Self-made certificates often have the name or address only in the common name, which X509_check_host
/// accepts.
bool TlsChannel::MatchesHostName() const {
  X509* const certificate = SSL_get0_peer_certificate(connection_.get());
  return certificate != nullptr && (X509_check_ip_asc(certificate, host_.c_str(), 0) == 1 ||
                                    X509_check_host(certificate, host_.data(), host_.size(),
                                                    X509_CHECK_FLAG_NO_PARTIAL_WILDCARDS, nullptr) == 1);
}

void TlsChannel::SetFault() {
  const char* const reason = ERR_reason_error_string(ERR_get_error());
  fault_ = reason == nullptr ? "the secure connection failed" : reason;
  const long verified = SSL_get_verify_result(connection_.get());
  if (verified != X509_V_OK) fault_ += ": " + std::string(X509_verify_cert_error_string(verified));
  ERR_clear_error();
}

void TlsChannel::CollectEncrypted() {
  BIO* const written = SSL_get_wbio(connection_.get());
  std::array<char, 4096> piece;
  for (int count = 0; (count = BIO_read(written, piece.data(), piece.size())) > 0;) {
    encrypted_.append(piece.data(), static_cast<std::size_t>(count));
  }
}

}  // namespace keplo::broker
