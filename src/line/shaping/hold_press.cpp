#include "line/shaping/hold_press.h"

#include <algorithm>
#include <cstdint>
#include <optional>
#include <vector>

namespace keplo {

namespace {

/// Repeat periods, microseconds. RC5: 64 bit times of 1,778 us.
constexpr std::int64_t kBiphasePeriod = 113'800;
constexpr std::int64_t kPulseWidthPeriod = 45'000;
constexpr std::int64_t kPulseDistancePeriod = 108'000;

/// Smallest silence between two frames, microseconds; longer than what the timing analysis reads through at
/// any usual sample time, so that the frames stay apart.
constexpr std::int64_t kLeastSilence = 20'000;

/// Period at which a remote repeats the frame. A frame without a leader is whole in biphase alone; any other
/// one has lost its head, and nobody sends it twice.
std::optional<std::int64_t> PeriodOf(const Frame& frame) {
  const std::optional<PressTiming> timing = MeasurePress({&frame, 1});
  const bool hasLeader = frame.Runs.front() >= kShortestLeader;
  if (!hasLeader && !(timing && timing->Code == kBiphase)) return std::nullopt;
  const std::int64_t period = !hasLeader                              ? kBiphasePeriod
                              : timing && timing->Code == kPulseWidth ? kPulseWidthPeriod
                                                                      : kPulseDistancePeriod;
  return std::max(period, frame.Length() + kLeastSilence);
}

}  // namespace

void HoldPress(Pulses press, int holdMs, ShapingSpace& space, PulseTrain& held) {
  std::vector<Frame>& frames = space.Frames;
  SplitFrames(press, frames);
  const std::optional<std::int64_t> period = frames.size() == 1 ? PeriodOf(frames.front()) : std::nullopt;
  if (!period) {
    held.assign(press.begin(), press.end());
    return;
  }
  const std::int64_t end = std::int64_t{1000} * holdMs;
  for (std::int64_t start = *period; start < end; start += *period) {
    frames.push_back({frames.front().Runs, start});
  }
  const std::int64_t silence = LengthOf(press) - frames.front().Length();
  JoinFrames(frames, frames.back().End() + silence, held);
}

}  // namespace keplo
