#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

#include "signal/raw/raw_signal.h"

namespace keplo {

/// What a length may differ by in two hearings, microseconds: edges stray by up to 25 in both, and there are
/// two samples.
/// @param sampleTime microseconds
inline float RawTolerance(double sampleTime) { return 130 + 2 * static_cast<float>(sampleTime); }

/// Sample times of 50 to 60 us, and a remote that is a little off: the part that all lengths may differ by.
inline constexpr float kMostRawScale = 0.13F;

/// Whether a space and the mark after it, whose sum has no excess, could be the same at any scale.
/// @param heard microseconds, as stored
bool IsNearPeriod(float heard, float stored, double sampleTime);

/// The first periods of stored lengths, a bit each: enough to tell nearly all other signals from them by a
/// few instructions.
class RawPeriods {
 public:
  explicit RawPeriods(std::span<const int> stored);

  /// Periods that were heard.
  class Heard {
   public:
    explicit Heard(const HeardLengths& heard);

   private:
    friend class RawPeriods;
    std::array<std::uint64_t, 2> notLong_{}, notShort_{};
  };

  /// @param lost how many stored lengths stand before the first that was heard; even
  /// @return false if a period cannot be the same
  bool MayBe(const Heard& heard, std::size_t lost) const;

 private:
  std::array<std::uint64_t, 2> long_{}, short_{};
};

}  // namespace keplo
