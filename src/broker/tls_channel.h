#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "broker/broker_settings.h"

struct ssl_ctx_st;
struct ssl_st;

namespace keplo::broker {

/// A secure connection without its socket: what comes from the broker goes in, and what it means and what is
/// to be sent come out. The library would do the same by itself, but nobody could see then what the broker
/// says to it.
class TlsChannel {
 public:
  /// @param settings of a broker with TLS
  /// @throws Failure for files that cannot be used
  explicit TlsChannel(const BrokerSettings& settings);

  /// Takes bytes that came from the broker.
  /// @return false if there is no secure connection with it, or no more
  bool Take(std::string_view sealed);
  /// Bytes that the broker has said, for the caller to take out.
  std::string& Opened() { return opened_; }
  /// Bytes to send to the broker, for the caller to take out.
  std::string& Sealed() { return sealed_; }
  /// Whether the broker has said that it will say no more. Its connection may stay open all the same.
  bool HasEnded() const { return ended_; }
  /// Whether the broker has proved who it is. Before that nothing can be said to it.
  bool IsUp() const { return up_; }
  /// Says something to the broker.
  /// @return false if there is no more secure connection
  bool Say(std::string_view plain);
  /// Why there is none, in the words of OpenSSL; empty as long as there is.
  const std::string& Fault() const { return fault_; }

 private:
  struct Free {
    void operator()(ssl_ctx_st* context) const;
    void operator()(ssl_st* connection) const;
  };

  void UseOwnCertificate(const BrokerSettings& settings);
  void Begin();
  void GoOn();
  void Open();
  bool IsNamedAsAsked() const;
  void NoteFault();
  void TakeWritten();

  const std::string host_;
  std::unique_ptr<ssl_ctx_st, Free> context_;
  std::unique_ptr<ssl_st, Free> connection_;
  std::string opened_, sealed_, fault_;
  bool up_ = false, ended_ = false;
};

}  // namespace keplo::broker
