#pragma once

#include <algorithm>
#include <cstdint>
#include <limits>
#include <string_view>

namespace keplo {

// A value is blanks, an optional sign and digits, and optionally a point and further digits; anything after
// that is ignored. Without a digit before the point the value is 0.

/// The number without its fraction. Above 32 bits the result is inexact, but also above 32 bits.
std::int64_t NumberWithoutFraction(std::string_view value);

/// The number rounded to the nearest integer, halves to even; above 32 bits as NumberWithoutFraction.
std::int64_t NumberRounded(std::string_view value);

/// The number with its fraction, for comparisons with limits.
double Number(std::string_view value);

template <typename Int>
Int Saturated(std::int64_t number) {
  return static_cast<Int>(
      std::clamp<std::int64_t>(number, std::numeric_limits<Int>::min(), std::numeric_limits<Int>::max()));
}

/// As NumberWithoutFraction and NumberRounded, clamped to an integer type of 16 or 32 bits.
template <typename Int>
Int WithoutFraction(std::string_view value) {
  return Saturated<Int>(NumberWithoutFraction(value));
}
template <typename Int>
Int Rounded(std::string_view value) {
  return Saturated<Int>(NumberRounded(value));
}

}  // namespace keplo
