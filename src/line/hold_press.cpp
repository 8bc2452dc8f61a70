#include "line/hold_press.h"

#include <algorithm>
#include <cstdint>
#include <utility>
#include <vector>

#include "line/frames.h"

namespace keplo {

namespace {

/// Repeat periods by the first mark of the frame, microseconds. RC5 has no leader: 64 bit times of 1,778 us.
struct Period {
  int LongestMark;
  std::int64_t Microseconds;
};
constexpr Period kPeriods[] = {{2000, 113'800}, {2900, 45'000}, {kLongestPulse, 108'000}};

/// Smallest silence between two frames, microseconds; longer than what the timing analysis reads through at
/// any usual sample time, so that the frames stay apart.
constexpr std::int64_t kLeastSilence = 20'000;

std::int64_t PeriodOf(const Frame& frame) {
  const auto* const period = std::find_if(std::begin(kPeriods), std::end(kPeriods), [&](const Period& p) {
    return frame.Runs.front() <= p.LongestMark;
  });
  return std::max(period->Microseconds, frame.Length() + kLeastSilence);
}

}  // namespace

PulseTrain HoldPress(const PulseTrain& press, int holdMs) {
  std::vector<Frame> frames = SplitFrames(press);
  if (frames.size() != 1) return press;
  const std::int64_t period = PeriodOf(frames.front());
  const std::int64_t held = std::int64_t{1000} * holdMs;
  for (std::int64_t start = period; start < held; start += period) {
    frames.push_back({frames.front().Runs, start});
  }
  const std::int64_t silence = LengthOf(press) - frames.front().Length();
  return JoinFrames(frames, frames.back().End() + silence);
}

}  // namespace keplo
