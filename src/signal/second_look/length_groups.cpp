#include "signal/second_look/length_groups.h"

#include <algorithm>
#include <bit>

namespace keplo::robust {

namespace {

constexpr double kStepUnits = 0.35;   // between runs of two lengths, which are one base time apart or more
constexpr double kSpreadUnits = 0.7;  // between runs of one length: 50 us of jitter and the sample grid
constexpr double kClearSteps = 0.4;   // of the way between two lengths that has no run, with 25 us

/// Jitter of an edge, 25 us in bad remotes, and the sample grid spread equal runs over five samples.
bool IsTight(const Length& length, double unit) {
  const double spread = length.Most - length.Least;
  return spread <= std::max({5.0, kSpreadUnits * std::min(unit, length.Mean), 0.35 * length.Mean});
}

/// Runs of neighbouring lengths that are being added up.
struct Group {
  int Least = 0, Most = 0, Runs = 0;
  std::int64_t Sum = 0;

  void Add(int length, int runs) {
    if (Runs == 0) Least = length;
    Most = length;
    Runs += runs;
    Sum += std::int64_t{length} * runs;
  }
  Length Of() const { return {Least, Most, static_cast<double>(Sum) / Runs}; }
};

}  // namespace

void LengthCounts::Grow(std::size_t place) {
  occupied_.resize(place / kBits + 1);
  counts_.resize(occupied_.size() * kBits);
}

void LengthCounts::Clear() {
  for (std::size_t word = 0; word < occupied_.size(); ++word) {
    for (std::uint64_t bits = occupied_[word]; bits != 0; bits &= bits - 1)
      counts_[word * kBits + static_cast<std::size_t>(std::countr_zero(bits))] = 0;
    occupied_[word] = 0;
  }
}

int LengthCounts::LowerQuartile(std::size_t all) const {
  std::size_t seen = 0;
  for (std::size_t word = 0; word < occupied_.size(); ++word) {
    for (std::uint64_t bits = occupied_[word]; bits != 0; bits &= bits - 1) {
      const std::size_t length = word * kBits + static_cast<std::size_t>(std::countr_zero(bits));
      seen += static_cast<std::size_t>(counts_[length]);
      if (seen * 4 > all) return static_cast<int>(length);
    }
  }
  return 0;
}

Lengths LengthCounts::Groups(double unit) const {
  const double step = std::max(3.0, kStepUnits * unit);
  Lengths lengths;
  Group group;
  const auto close = [&] {
    const Length length = group.Of();
    if (lengths.Number == Lengths::kMost || !IsTight(length, unit)) return false;
    lengths.Of.at(lengths.Number++) = length;
    group = {};
    return true;
  };
  for (std::size_t word = 0; word < occupied_.size(); ++word) {
    for (std::uint64_t bits = occupied_[word]; bits != 0; bits &= bits - 1) {
      const auto length = static_cast<int>(word * kBits) + std::countr_zero(bits);
      if (group.Runs > 0 && length - group.Most >= step && !close()) return {};
      group.Add(length, counts_[static_cast<std::size_t>(length)]);
    }
  }
  if (group.Runs > 0 && !close()) return {};
  return lengths;
}

double Step(const Lengths& lengths) { return lengths.Long().Mean - lengths.Short().Mean; }

bool IsClear(const Lengths& lengths) {
  return lengths.Number == 1 || lengths.Long().Least - lengths.Short().Most >= kClearSteps * Step(lengths);
}

}  // namespace keplo::robust
