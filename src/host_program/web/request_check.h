#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace keplo::host {

/// Sizes that a request may have. The pages take no uploads, and browsers stay far below.
inline constexpr std::size_t kMostHeadBytes = 8192;
inline constexpr std::size_t kMostBodyBytes = 65536;

/// Where a request arrived.
struct OwnAddress {
  std::string Address;  // the number under which the client reached the host, without brackets
  std::uint16_t Port = 0;
  bool Loopback = true;
  std::vector<std::string> Names;  // other values of a Host header that are the host's own
};

/// Whether a Host header means this host. A page of another name that was made to point here (DNS rebinding)
/// gives itself away by it: the browser sends the name it believes in.
bool IsOwnHost(std::string_view host, const OwnAddress& own);

/// What is known of a request from the bytes that have come so far.
struct RequestVerdict {
  enum Kind { Incomplete, Refused, HeadComplete } Answer = Incomplete;
  int Status = 0;              // HTTP status of a refusal
  std::string Reason;          // for the person who asks
  std::size_t TotalBytes = 0;  // head and body of a request whose head is complete
};

/// Looks at the head of a request: form, size, Host header and announced length of the body. A body must
/// announce its length.
/// @param received what has come so far; beyond kMostHeadBytes nothing is needed
RequestVerdict CheckRequest(std::string_view received, const OwnAddress& own);

}  // namespace keplo::host
