#include "signal/raw/raw_periods.h"

#include <algorithm>
#include <cmath>

#include "signal/raw/raw_frames.h"

namespace keplo {

namespace {

constexpr std::size_t kPeriods = 64;

/// Periods of digits, microseconds, between which no others lie: of codes with units of 560 and of 432.
struct Border {
  float Short, Long;
};
constexpr std::array kBorders = {Border{1200, 2100}, Border{1000, 1650}};

constexpr float kRounding = 1;  // microseconds

std::size_t PeriodsOf(std::size_t lengths) { return lengths < 3 ? 0 : std::min(kPeriods, (lengths - 1) / 2); }

}  // namespace

bool IsNearPeriod(float heard, float stored, double sampleTime) {
  return std::abs(heard - stored) <= 2 * RawTolerance(sampleTime) + kMostRawScale * stored;
}

RawPeriods::RawPeriods(std::span<const int> stored) {
  for (std::size_t i = 0; i < PeriodsOf(stored.size()); ++i) {
    const auto period = static_cast<float>(stored[2 * i + 1]) + static_cast<float>(stored[2 * i + 2]);
    for (std::size_t border = 0; border < kBorders.size(); ++border) {
      if (period >= kBorders[border].Long) long_[border] |= std::uint64_t{1} << i;
      if (period <= kBorders[border].Short) short_[border] |= std::uint64_t{1} << i;
    }
  }
}

RawPeriods::Heard::Heard(const HeardLengths& heard) {
  const float off = 2 * RawTolerance(heard.SampleTime) + kRounding;
  const std::size_t periods = PeriodsOf(LengthsInPlace(heard));
  for (std::size_t i = 0; i < periods; ++i) {
    const auto period = static_cast<float>(heard.Us(2 * i + 1) + heard.Us(2 * i + 2));
    for (std::size_t border = 0; border < kBorders.size(); ++border) {
      // What is not near the border itself is near nothing beyond it.
      if (period < (1 - kMostRawScale) * kBorders[border].Long - off)
        notLong_[border] |= std::uint64_t{1} << i;
      if (period > (1 + kMostRawScale) * kBorders[border].Short + off)
        notShort_[border] |= std::uint64_t{1} << i;
    }
  }
}

bool RawPeriods::MayBe(const Heard& heard, std::size_t lost) const {
  const std::size_t shift = lost / 2;
  return ((long_[0] >> shift & heard.notLong_[0]) | (short_[0] >> shift & heard.notShort_[0]) |
          (long_[1] >> shift & heard.notLong_[1]) | (short_[1] >> shift & heard.notShort_[1])) == 0;
}

}  // namespace keplo
