#pragma once

#include <charconv>
#include <cstdint>
#include <optional>
#include <string_view>

namespace keplo {

/// EventIDs from here on were invented by a user, not counted: to continue from them could run out of
/// numbers.
inline constexpr std::int64_t kEndOfEventNumbers = 1'000'000'000'000'000;

/// The number that an EventID is; none if it is another text, or not below kEndOfEventNumbers.
inline std::optional<std::int64_t> NumberOfEventID(std::string_view eventID) {
  std::int64_t number = 0;
  const char* const end = eventID.data() + eventID.size();
  const auto [stop, error] = std::from_chars(eventID.data(), end, number);
  if (error != std::errc() || stop != end || number >= kEndOfEventNumbers) return std::nullopt;
  return number;
}

}  // namespace keplo
