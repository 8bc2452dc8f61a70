#include "signal/raw/raw_signal.h"

#include <algorithm>

namespace keplo {

int RawGapOf(RunSpan lengths, double unit) {
  constexpr double kLongData = 4000;  // microseconds; leaders have spaces of up to 4500, but one each
  constexpr int kLongGap = 15'000;
  std::size_t spaces = 0, shorter = 0;
  for (std::size_t i = 1; i < lengths.size(); i += 2) {
    ++spaces;
    if (lengths[i] * unit < kLongData) ++shorter;
  }
  return 2 * shorter >= spaces ? kRawGap : kLongGap;
}

HeardLengths HeardIn(RunSpan runs, double sampleTime) {
  if (!runs.empty() && runs.front() == 0) runs = runs.subspan(2);
  if (runs.empty()) return {};
  // A mark at the end of the samples was not heard to its end, and what the space before it parts is
  // unknown.
  const int gap = RawGapOf(runs, sampleTime);
  if (EndsInMark(runs)) return {runs.first(runs.size() < 2 ? 0 : runs.size() - 2), true, sampleTime, gap};
  return {runs.first(runs.size() - 1), runs.back() * sampleTime < gap, sampleTime, gap};
}

std::size_t FirstFrameOf(const HeardLengths& heard) {
  std::size_t end = 1;
  while (end < heard.Runs.size() && !heard.IsGap(end)) end += 2;
  return std::min(end, heard.Runs.size());
}

}  // namespace keplo
