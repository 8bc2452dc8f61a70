#pragma once

#include <algorithm>
#include <cstdint>
#include <limits>
#include <string_view>

namespace keplo {

// A value begins with blanks, an optional sign and digits, perhaps a point and further digits; what follows
// does not count. Without a digit before the point the value is 0.

/// The number with its fraction dropped; beyond 32 bits it is only known to lie there.
std::int64_t NumberWithoutFraction(std::string_view value);

/// The number rounded to the nearest whole one, a half to the even neighbour; beyond 32 bits as above.
std::int64_t NumberRounded(std::string_view value);

/// The number with its fraction, to compare it with limits.
double Number(std::string_view value);

template <typename Int>
Int Saturated(std::int64_t number) {
  return static_cast<Int>(
      std::clamp<std::int64_t>(number, std::numeric_limits<Int>::min(), std::numeric_limits<Int>::max()));
}

/// The same two for a type of 16 or 32 bits: a number beyond it becomes the nearest that it can hold.
template <typename Int>
Int WithoutFraction(std::string_view value) {
  return Saturated<Int>(NumberWithoutFraction(value));
}
template <typename Int>
Int Rounded(std::string_view value) {
  return Saturated<Int>(NumberRounded(value));
}

}  // namespace keplo
