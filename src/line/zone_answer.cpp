#include "line/zone_answer.h"

#include <algorithm>
#include <array>

namespace keplo {

namespace {

/// For zones 1 to 8.
constexpr std::array<char, 8> kAnswers = {8, 25, 26, 43, 28, 45, 46, 63};

}  // namespace

std::int16_t ZoneOfAnswer(char answer) {
  if (answer >= '1' && answer <= '8') return static_cast<std::int16_t>(answer - '0');
  const auto* const found = std::find(kAnswers.begin(), kAnswers.end(), answer);
  return found == kAnswers.end() ? std::int16_t{0} : static_cast<std::int16_t>(found - kAnswers.begin() + 1);
}

}  // namespace keplo
