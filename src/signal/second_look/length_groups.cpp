#include "signal/second_look/length_groups.h"

#include <algorithm>
#include <numeric>

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

Length LengthOfSorted(const std::vector<int>& sorted, std::size_t begin, std::size_t end) {
  const double sum = std::accumulate(sorted.begin() + static_cast<std::ptrdiff_t>(begin),
                                     sorted.begin() + static_cast<std::ptrdiff_t>(end), 0.0);
  return {sorted[begin], sorted[end - 1], sum / static_cast<double>(end - begin)};
}

}  // namespace

Lengths GroupRuns(std::vector<int>& runs, double unit) {
  Lengths lengths;
  if (runs.empty()) return lengths;
  std::sort(runs.begin(), runs.end());
  const double step = std::max(3.0, kStepUnits * unit);
  std::size_t begin = 0;
  for (std::size_t i = 1; i <= runs.size(); ++i) {
    if (i < runs.size() && runs[i] - runs[i - 1] < step) continue;
    const Length length = LengthOfSorted(runs, begin, i);
    if (lengths.Number == Lengths::kMost || !IsTight(length, unit)) return {};
    lengths.Of.at(lengths.Number++) = length;
    begin = i;
  }
  return lengths;
}

double Step(const Lengths& lengths) { return lengths.Long().Mean - lengths.Short().Mean; }

bool IsClear(const Lengths& lengths) {
  return lengths.Number == 1 || lengths.Long().Least - lengths.Short().Most >= kClearSteps * Step(lengths);
}

}  // namespace keplo::robust
