#include "signal/raw/raw_signal.h"

#include <algorithm>
#include <cmath>
#include <functional>

namespace keplo {

int RawGapOf(RunSpan lengths, double unit) {
  constexpr double kLongData = 4000;  // microseconds; leaders have spaces of up to 4500, but one each
  constexpr int kLongGap = 15'000;
  constexpr std::size_t kOfData = 4;  // a part of all spaces that neither leaders nor gaps are
  std::vector<int> longer;
  for (std::size_t i = 1; i < lengths.size(); i += 2) {
    if (lengths[i] * unit >= kLongData) longer.push_back(lengths[i]);
  }
  const std::size_t more = lengths.size() / 2 / kOfData;
  if (longer.size() <= more) return kRawGap;
  const auto data = longer.begin() + static_cast<std::ptrdiff_t>(more);
  std::nth_element(longer.begin(), data, longer.end(), std::greater<>());
  return std::min(kLongGap, static_cast<int>(std::lround(2 * *data * unit)));
}

HeardLengths HeardIn(RunSpan runs, double sampleTime) {
  if (!runs.empty() && runs.front() == 0) runs = runs.subspan(2);
  if (runs.empty()) return {};
  // What a recording keeps behind its signal, microseconds: more than any space within a frame.
  constexpr double kSilence = 9'500;
  // A mark at the end of the samples was not heard to its end, and what the space before it parts is
  // unknown.
  const int gap = RawGapOf(runs, sampleTime);
  if (EndsInMark(runs)) return {runs.first(runs.size() < 2 ? 0 : runs.size() - 2), true, sampleTime, gap};
  return {runs.first(runs.size() - 1), runs.back() * sampleTime < std::min<double>(gap, kSilence), sampleTime,
          gap};
}

std::size_t FirstFrameOf(const HeardLengths& heard) {
  std::size_t end = 1;
  while (end < heard.Runs.size() && !heard.IsGap(end)) end += 2;
  return std::min(end, heard.Runs.size());
}

}  // namespace keplo
