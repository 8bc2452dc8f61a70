#pragma once

#include <array>
#include <cstddef>
#include <string_view>

namespace keplo::robust {

/// For a code that fails its protocol's own check by one digit: the digits of which one may be wrong. They
/// alone do not spoil the code; how clearly they were heard decides.
struct SuspectDigits {
  static constexpr std::size_t kMost = 2;
  std::array<std::size_t, kMost> Places{};
  std::size_t Number = 0;
  /// Whether the code is doubtful in any case, since hardly any remote sends such codes.
  bool SpoilCode = false;

  void Add(std::size_t place) { Places.at(Number++) = place; }
};

/// The suspects among 32 or 48 digits of pulse distance; none where the inverse bytes or sums are right, or
/// where the code has none.
SuspectDigits SuspectsOf(std::string_view digits);

}  // namespace keplo::robust
