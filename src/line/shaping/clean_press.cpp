#include "line/shaping/clean_press.h"

#include <algorithm>
#include <cstddef>
#include <optional>
#include <vector>

#include "line/shaping/frames.h"
#include "line/shaping/line_code.h"

namespace keplo {

namespace {

/// Marks and spaces below this, microseconds, are noise: the analysis measures base times from 220 us on.
constexpr int kShortestRun = 100;

/// Runs of a repeat that carries no code, as NEC sends while a key is held: leader, space, mark.
constexpr std::size_t kDittoRuns = 3;

PulseTrain WithoutGlitches(const PulseTrain& press) {
  PulseTrain smooth;
  bool joined = false;
  for (const int run : press) {
    const bool glitch = run < kShortestRun && !smooth.empty();
    if (joined || glitch) {
      smooth.back() = std::min(smooth.back() + run, kLongestPulse);
    } else {
      smooth.push_back(run);
    }
    joined = glitch && !joined;
  }
  return smooth;
}

struct MeasuredFrame {
  Frame Signal;
  FrameUnits Units;
};

bool Whole(const MeasuredFrame& frame) { return frame.Units.size() > kDittoRuns; }

/// Whether the frame is what the recording caught of the other one when it began late. Its first run may have
/// lost a part.
bool IsTailOf(const FrameUnits& units, const FrameUnits& other) {
  return units.size() < other.size() && std::equal(units.rbegin(), units.rend() - 1, other.rbegin());
}

/// Whether the frame is what the recording caught of the other one when it ended early.
bool IsHeadOf(const FrameUnits& units, const FrameUnits& other) {
  return units.size() < other.size() && std::equal(units.begin(), units.end() - 1, other.begin());
}

void LeaveOutCutFrames(std::vector<MeasuredFrame>& frames) {
  if (frames.size() > 1 && IsTailOf(frames[0].Units, frames[1].Units)) frames.erase(frames.begin());
  if (frames.size() > 1 && Whole(frames.back()) &&
      IsHeadOf(frames.back().Units, frames[frames.size() - 2].Units)) {
    frames.pop_back();
  }
}

}  // namespace

PulseTrain CleanPress(const PulseTrain& press) {
  PulseTrain smooth = WithoutGlitches(press);
  const std::vector<Frame> frames = SplitFrames(smooth);
  const std::optional<PressTiming> timing = MeasurePress(frames);
  if (!timing) return smooth;

  std::vector<MeasuredFrame> sound;
  for (const Frame& frame : frames) {
    if (std::optional<FrameUnits> units = UnitsOf(frame, *timing))
      sound.push_back({frame, std::move(*units)});
  }
  LeaveOutCutFrames(sound);
  if (std::none_of(sound.begin(), sound.end(), Whole)) return smooth;

  std::vector<Frame> kept;
  kept.reserve(sound.size());
  for (const MeasuredFrame& frame : sound) kept.push_back(frame.Signal);
  return JoinFrames(kept, LengthOf(smooth));
}

}  // namespace keplo
