#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace keplo::host {

/// Size limits of a request. The pages accept no uploads, and browsers stay far below.
inline constexpr std::size_t kMostHeadBytes = 8192;
inline constexpr std::size_t kMostBodyBytes = 65536;

/// The address at which a request arrived.
struct OwnAddress {
  std::string Address;  // the IP address at which the client reached the host, without brackets
  std::uint16_t Port = 0;
  bool Loopback = true;
  std::vector<std::string> Names;  // additional valid values of the Host header
};

/// Whether a Host header refers to this host. This detects DNS rebinding, where a page under another name
/// that resolves to this host sends requests: the browser sends that name.
bool IsOwnHost(std::string_view host, const OwnAddress& own);

/// The result of checking the bytes of a request received so far.
struct RequestVerdict {
  enum Kind { Incomplete, Refused, HeadComplete } Answer = Incomplete;
  int Status = 0;              // HTTP status of a refusal
  std::string Reason;          // for the user
  std::size_t TotalBytes = 0;  // head and body of a request whose head is complete
};

/// Checks the head of a request: syntax, size, Host header and the length of the body, which must be
/// announced.
/// @param received the bytes so far; only the first kMostHeadBytes are needed
RequestVerdict CheckRequest(std::string_view received, const OwnAddress& own);

}  // namespace keplo::host
