#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "broker/broker_settings.h"

struct ssl_ctx_st;
struct ssl_st;

namespace keplo::broker {

/// TLS without the socket: converts between encrypted and plain bytes. The library has TLS too, but then its
/// input could not be checked.
class TlsChannel {
 public:
  /// @throws Failure for files that cannot be used
  explicit TlsChannel(const BrokerSettings& settings);

  /// Processes bytes from the broker.
  /// @return false if there is no secure connection, or if it was lost
  bool Receive(std::string_view encrypted);
  /// Decrypted bytes from the broker, for the caller to remove.
  std::string& Plain() { return plain_; }
  /// Bytes to send to the broker, for the caller to remove.
  std::string& Encrypted() { return encrypted_; }
  /// Whether the broker has announced the end of its data. The socket may stay open.
  bool HasEnded() const { return ended_; }
  /// Whether the handshake is complete. Before that, nothing can be sent.
  bool IsUp() const { return up_; }
  /// Encrypts bytes for the broker.
  /// @return false if the secure connection was lost
  bool Send(std::string_view plain);
  /// Why there is no secure connection, from OpenSSL; empty if there is one.
  const std::string& Fault() const { return fault_; }

 private:
  struct Free {
    void operator()(ssl_ctx_st* context) const;
    void operator()(ssl_st* connection) const;
  };

  void UseOwnCertificate(const BrokerSettings& settings);
  void StartHandshake();
  void ContinueHandshake();
  void Decrypt();
  bool MatchesHostName() const;
  void SetFault();
  void CollectEncrypted();

  const std::string host_;
  std::unique_ptr<ssl_ctx_st, Free> context_;
  std::unique_ptr<ssl_st, Free> connection_;
  std::string plain_, encrypted_, fault_;
  bool up_ = false, ended_ = false;
};

}  // namespace keplo::broker
