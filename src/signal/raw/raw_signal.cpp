#include "signal/raw/raw_signal.h"

#include <algorithm>

namespace keplo {

HeardLengths HeardIn(RunSpan runs, double sampleTime) {
  if (!runs.empty() && runs.front() == 0) runs = runs.subspan(2);
  if (runs.empty()) return {};
  // A mark at the end of the samples was not heard to its end, and what the space before it parts is
  // unknown.
  if (EndsInMark(runs)) return {runs.first(runs.size() < 2 ? 0 : runs.size() - 2), true, sampleTime};
  return {runs.first(runs.size() - 1), runs.back() * sampleTime < kRawGap, sampleTime};
}

std::size_t FirstFrameOf(const HeardLengths& heard) {
  std::size_t end = 1;
  while (end < heard.Runs.size() && !heard.IsGap(end)) end += 2;
  return std::min(end, heard.Runs.size());
}

}  // namespace keplo
