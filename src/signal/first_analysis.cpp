#include "signal/first_analysis.h"

#include <algorithm>
#include <cstdlib>

namespace keplo {

namespace {

constexpr std::size_t kLookAheadPairs = 25;   // about one frame
constexpr std::size_t kLongestCounted = 99;   // longer runs share this entry
constexpr std::size_t kLongestSilence = 300;  // a longer space ends the frame, and with it the look
constexpr std::size_t kFirstPeak = 4;         // base times from 220 us ...
constexpr std::size_t kLastPeak = 90;         // ... to about 5 ms, at 55 us a sample
constexpr int kLargestPeakDifference = 5;     // marks and spaces of one base time differ by no more

void Count(RunHistogram& histogram, std::size_t run) { ++histogram[std::min(run, kLongestCounted)]; }

void CountRuns(RunSpan runs, Timing& timing) {
  timing.RunHist1.fill(0);
  timing.RunHist0.fill(0);
  // After the last run stands one of length 0.
  const auto lengthOf = [&](std::size_t run) {
    return run < runs.size() ? static_cast<std::size_t>(runs[run]) : 0;
  };
  for (std::size_t mark = 0; mark < 2 * kLookAheadPairs; mark += 2) {
    Count(timing.RunHist1, lengthOf(mark));
    const std::size_t space = mark + 1;
    if (space >= runs.size() || lengthOf(space) > kLongestSilence) return;
    Count(timing.RunHist0, lengthOf(space));
  }
}

/// Middle of the first window of three lengths that holds the most runs; 0 if no window holds any.
std::size_t PeakOf(const RunHistogram& histogram) {
  std::size_t peak = 0;
  int best = 0;
  for (std::size_t i = kFirstPeak; i <= kLastPeak; ++i) {
    const int sum = histogram[i - 1] + histogram[i] + histogram[i + 1];
    if (sum > best) {
      best = sum;
      peak = i;
    }
  }
  return peak;
}

/// Whether runs of about a multiple of the peak occur: one length below it to two above, since a peak of
/// equal runs lies one below their length.
bool HasRunsAt(const RunHistogram& histogram, std::size_t multiple) {
  return std::any_of(histogram.begin() + static_cast<std::ptrdiff_t>(multiple) - 1,
                     histogram.begin() + static_cast<std::ptrdiff_t>(multiple) + 3,
                     [](std::int16_t count) { return count > 0; });
}

std::int16_t KindOf(const Timing& timing, std::size_t peak0, std::size_t peak1) {
  const bool doubleSpace = HasRunsAt(timing.RunHist0, 2 * peak0);
  const bool doubleMark = HasRunsAt(timing.RunHist1, 2 * peak1);
  const bool tripleSpace = HasRunsAt(timing.RunHist0, 3 * peak0);
  if (doubleMark) return doubleSpace ? kRc5 : kSony;
  return doubleSpace || tripleSpace ? kNec : kUnknown;
}

}  // namespace

std::string_view ProtoKindName(std::int16_t kind) {
  switch (kind) {
    case kNec:
      return "NEC";
    case kSony:
      return "SONY";
    case kRc5:
      return "RC5";
    case kRc6:
      return "RC6";
    default:
      return "UNK";
  }
}

bool AnalyseTiming(RunSpan runs, Timing& timing) {
  CountRuns(runs, timing);
  const std::size_t peak0 = PeakOf(timing.RunHist0);
  const std::size_t peak1 = PeakOf(timing.RunHist1);
  const int difference = std::abs(static_cast<int>(peak1) - static_cast<int>(peak0));
  if (difference > kLargestPeakDifference || peak0 == 0 || peak1 == 0) return false;

  timing.ProtoKind = KindOf(timing, peak0, peak1);
  timing.BaseT = static_cast<std::int16_t>((peak0 + peak1) / 2);
  return true;
}

CommonLengths CommonLengthsOf(const Timing& timing) {
  return {static_cast<int>(PeakOf(timing.RunHist1)), static_cast<int>(PeakOf(timing.RunHist0))};
}

}  // namespace keplo
