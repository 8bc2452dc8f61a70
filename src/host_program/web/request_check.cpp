#include "host_program/web/request_check.h"

#include <algorithm>
#include <charconv>
#include <optional>

namespace keplo::host {

namespace {

constexpr int kBadRequest = 400, kLengthRequired = 411, kTooLarge = 413, kMisdirected = 421,
              kHeadTooLarge = 431;
constexpr std::string_view kUsualPort = "80";
constexpr std::string_view kHeadEnd = "\r\n\r\n";

std::string Lower(std::string_view text) {
  std::string lower(text);
  std::transform(lower.begin(), lower.end(), lower.begin(),
                 [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; });
  return lower;
}

std::string_view Trim(std::string_view text) {
  const std::size_t first = text.find_first_not_of(" \t");
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(" \t") - first + 1);
}

struct HostName {
  std::string Name;  // without the brackets of an IPv6 address
  std::string Port;
};

HostName SplitHost(std::string_view host) {
  const std::size_t bracket = host.rfind(']');
  const std::size_t colon = host.find(':', bracket == std::string_view::npos ? 0 : bracket);
  std::string_view name = host.substr(0, colon);
  if (name.size() >= 2 && name.front() == '[' && name.back() == ']') name = name.substr(1, name.size() - 2);
  return {Lower(name), std::string(colon == std::string_view::npos ? kUsualPort : host.substr(colon + 1))};
}

/// The header lines that are checked.
struct Head {
  int Hosts = 0;
  std::string_view Host;
  std::optional<std::string_view> ContentLength;
  bool TransferEncoding = false;
  bool WebSocket = false;
  bool WellFormed = true;
};

void ReadHeader(std::string_view line, Head& head) {
  const std::size_t colon = line.find(':');
  const std::string name = Lower(line.substr(0, colon));
  if (colon == std::string_view::npos || name.empty() || name.find_first_of(" \t") != std::string::npos) {
    head.WellFormed = false;
    return;
  }
  const std::string_view value = Trim(line.substr(colon + 1));
  if (name == "host") {
    ++head.Hosts;
    head.Host = value;
  } else if (name == "content-length") {
    if (head.ContentLength) head.WellFormed = false;
    head.ContentLength = value;
  } else if (name == "transfer-encoding") {
    head.TransferEncoding = true;
  } else if (name == "upgrade") {
    // Any other upgrade may be ignored.
    head.WebSocket = Lower(value).find("websocket") != std::string::npos;
  }
}

bool IsRequestLine(std::string_view line) {
  const bool http1 = line.ends_with(" HTTP/1.1") || line.ends_with(" HTTP/1.0");
  return http1 && std::count(line.begin(), line.end(), ' ') == 2 && line.find(" /") != std::string_view::npos;
}

Head ReadHead(std::string_view text) {
  Head head;
  std::size_t end = text.find("\r\n");
  head.WellFormed = IsRequestLine(text.substr(0, end));
  while (end < text.size()) {
    const std::size_t start = end + 2;
    end = std::min(text.find("\r\n", start), text.size());
    ReadHeader(text.substr(start, end - start), head);
  }
  return head;
}

std::optional<std::size_t> LengthOf(std::string_view digits) {
  std::size_t length = 0;
  const char* const end = digits.data() + digits.size();
  const auto [stop, error] = std::from_chars(digits.data(), end, length);
  if (stop != end || digits.empty() || error == std::errc::invalid_argument) return {};
  return error == std::errc() ? length : kMostBodyBytes + 1;
}

RequestVerdict Refuse(int status, std::string_view reason) {
  return {RequestVerdict::Refused, status, std::string(reason), 0};
}

}  // namespace

bool IsOwnHost(std::string_view host, const OwnAddress& own) {
  const std::string asked = Lower(host);
  const auto isAsked = [&](const std::string& name) { return Lower(name) == asked; };
  if (std::any_of(own.Names.begin(), own.Names.end(), isAsked)) return true;
  const HostName split = SplitHost(host);
  if (split.Port != std::to_string(own.Port)) return false;
  return split.Name == Lower(own.Address) || (own.Loopback && split.Name == "localhost");
}

RequestVerdict CheckRequest(std::string_view received, const OwnAddress& own) {
  const std::size_t headEnd = received.substr(0, kMostHeadBytes).find(kHeadEnd);
  if (headEnd == std::string_view::npos) {
    if (received.size() < kMostHeadBytes) return {};
    return Refuse(kHeadTooLarge, "The head of a request may have 8192 bytes.");
  }
  const Head head = ReadHead(received.substr(0, headEnd));
  if (!head.WellFormed || head.Hosts != 1) {
    return Refuse(kBadRequest, "This is no HTTP/1.1 request with one Host header.");
  }
  if (!IsOwnHost(head.Host, own)) {
    return Refuse(kMisdirected, "This host does not go by the name in the Host header.");
  }
  if (head.WebSocket)
    return Refuse(kBadRequest, "The pages speak plain HTTP; there is nothing to upgrade to.");
  if (head.TransferEncoding) return Refuse(kLengthRequired, "A body must announce its length.");
  const auto length = LengthOf(head.ContentLength.value_or("0"));
  if (!length) return Refuse(kBadRequest, "The Content-Length is no number.");
  if (*length > kMostBodyBytes) return Refuse(kTooLarge, "The body of a request may have 65536 bytes.");
  return {RequestVerdict::HeadComplete, 0, {}, headEnd + kHeadEnd.size() + *length};
}

}  // namespace keplo::host
