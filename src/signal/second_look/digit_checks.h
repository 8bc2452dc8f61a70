#pragma once

#include <array>
#include <cstddef>
#include <string_view>

namespace keplo::robust {

/// Of a code that is all but one digit what its protocol sends: the digits of which any may be the one that
/// is wrong, where it takes more to doubt the code.
struct SuspectDigits {
  static constexpr std::size_t kMost = 2;
  std::array<std::size_t, kMost> Places{};
  std::size_t Number = 0;
  /// Whether hardly any protocol sends such codes. Else some remotes do, whose digits are no inverse ones.
  bool SpoilCode = false;

  void Add(std::size_t place) { Places.at(Number++) = place; }
};

/// The suspects among 32 or 48 digits of pulse distance; none where their inverse bytes or sums hold, or
/// there are none of these.
SuspectDigits SuspectsOf(std::string_view digits);

}  // namespace keplo::robust
