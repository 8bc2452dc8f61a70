#include "signal/second_look/length_groups.h"

#include <algorithm>
#include <bit>

namespace keplo::robust {

namespace {

constexpr double kStepUnits = 0.35;   // between runs of two lengths, which are one base time apart or more
constexpr double kSpreadUnits = 0.7;  // between runs of one length: 50 us of jitter and the sample grid
constexpr double kClearSteps = 0.4;   // of the way between two lengths that holds no run, even with 25 us

/// Jitter of an edge, 25 us in bad remotes, and the sample grid spread equal runs over five samples.
/// @param mean of the runs
bool IsTight(int spread, double mean, double unit) {
  constexpr int kUsualSpread = 5;
  return spread <= kUsualSpread || spread <= std::max(kSpreadUnits * std::min(unit, mean), 0.35 * mean);
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
  double Mean() const { return static_cast<double>(Sum) / Runs; }
  /// Whether it may still turn out to be tight: each longer run adds more to the spread than to what the mean
  /// allows.
  bool MayBeTight(double unit) const { return IsTight(Most - Least, Most, unit); }
};

}  // namespace

void LengthCounts::CountEveryOther(RunSpan runs, int longest) {
  std::uint64_t occupied = 0;  // of the first word, into which nearly all lengths fit
  const auto count = [&](int run, std::size_t turn) {
    const auto length = static_cast<std::size_t>(run);
    if (length >= kBits) return CountLong(static_cast<std::size_t>(std::min(run, longest)));
    occupied |= std::uint64_t{1} << length;
    ++counts_[turn][length];
  };
  std::size_t i = 0;
  for (; i + 2 < runs.size(); i += 4) {
    count(runs[i], 0);
    count(runs[i + 2], 1);
  }
  if (i < runs.size()) count(runs[i], 0);
  occupied_.front() |= occupied;
}

void LengthCounts::CountLong(std::size_t length) {
  if (length >= occupied_.size() * kBits) {
    occupied_.resize(length / kBits + 1);
    for (std::vector<int>& counts : counts_) counts.resize(occupied_.size() * kBits);
  }
  ++counts_[0][length];
  const std::size_t word = length / kBits;
  occupied_[word] |= std::uint64_t{1} << length % kBits;
  words_ = std::max(words_, word + 1);
}

void LengthCounts::Clear() {
  for (std::size_t word = 0; word < words_; ++word) {
    for (std::uint64_t bits = occupied_[word]; bits != 0; bits &= bits - 1) {
      const std::size_t length = word * kBits + static_cast<std::size_t>(std::countr_zero(bits));
      counts_[0][length] = counts_[1][length] = 0;
    }
    occupied_[word] = 0;
  }
  words_ = 1;
}

int LengthCounts::Longest() const {
  const auto places = (words_ - 1) * kBits + static_cast<std::size_t>(std::bit_width(occupied_[words_ - 1]));
  return std::max(static_cast<int>(places) - 1, 0);
}

int LengthCounts::LowerQuartile(std::size_t all) const {
  std::size_t seen = 0;
  for (std::size_t word = 0; word < words_; ++word) {
    for (std::uint64_t bits = occupied_[word]; bits != 0; bits &= bits - 1) {
      const std::size_t length = word * kBits + static_cast<std::size_t>(std::countr_zero(bits));
      seen += static_cast<std::size_t>(CountOf(length));
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
    const double mean = group.Mean();
    if (lengths.Number == Lengths::kMost || !IsTight(group.Most - group.Least, mean, unit)) return false;
    lengths.Of.at(lengths.Number++) = {group.Least, group.Most, mean};
    group = {};
    return true;
  };
  for (std::size_t word = 0; word < words_; ++word) {
    for (std::uint64_t bits = occupied_[word]; bits != 0; bits &= bits - 1) {
      const auto length = static_cast<int>(word * kBits) + std::countr_zero(bits);
      if (group.Runs > 0 && length - group.Most >= step && !close()) return {};
      group.Add(length, CountOf(static_cast<std::size_t>(length)));
      if (!group.MayBeTight(unit)) return {};
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
