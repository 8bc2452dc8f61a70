#pragma once

#include <concepts>
#include <string>
#include <string_view>

namespace keplo {

/// "1 press", "2 presses": a count and what is counted, of which one is named.
template <std::integral Count>
std::string Counted(Count count, std::string_view one) {
  const std::string_view ending = count == 1 ? "" : one.ends_with('s') ? "es" : "s";
  return std::to_string(count) + ' ' + std::string(one).append(ending);
}

}  // namespace keplo
