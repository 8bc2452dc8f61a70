#include "signal/raw/raw_signal.h"

namespace keplo {

HeardLengths HeardIn(RunSpan runs) {
  if (!runs.empty() && runs.front() == 0) runs = runs.subspan(2);
  if (runs.empty()) return {};
  // A mark at the end of the samples was not heard to its end, and what the space ahead of it parts is
  // unknown.
  if (EndsInMark(runs)) return {runs.first(runs.size() < 2 ? 0 : runs.size() - 2), true};
  return {runs.first(runs.size() - 1), runs.back() * kNominalSampleTime < kRawGap};
}

std::size_t FirstFrameOf(const HeardLengths& heard) {
  for (std::size_t i = 1; i < heard.Runs.size(); i += 2) {
    if (heard.Runs[i] * kNominalSampleTime >= kRawGap) return i;
  }
  return heard.Runs.size();
}

}  // namespace keplo
