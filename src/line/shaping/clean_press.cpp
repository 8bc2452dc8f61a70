#include "line/shaping/clean_press.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <limits>
#include <optional>
#include <vector>

namespace keplo {

namespace {

/// Marks and spaces below this, microseconds, are noise: the analysis measures base times from 220 us on.
constexpr int kShortestRun = 100;

/// Runs of a repeat that carries no code, as NEC sends while a key is held: leader, space, mark.
constexpr std::size_t kDittoRuns = 3;

bool Whole(const MeasuredFrame& frame) { return frame.Units.size() > kDittoRuns; }

/// Whether the frame is what the recording caught of the other one when it began late. Its first run may have
/// lost a part.
bool IsTailOf(FrameUnits units, FrameUnits other) {
  return units.size() < other.size() && std::equal(units.rbegin(), units.rend() - 1, other.rbegin());
}

/// Whether the frame is what the recording caught of the other one when it ended early.
bool IsHeadOf(FrameUnits units, FrameUnits other) {
  return units.size() < other.size() && std::equal(units.begin(), units.end() - 1, other.begin());
}

/// A biphase frame whose head is cut stays: it is the second one that is read, and a buffer has no third.
void LeaveOutCutFrames(std::vector<MeasuredFrame>& frames, const LineUnits& code) {
  const bool headless = frames.size() > 1 && IsTailOf(frames[0].Units, frames[1].Units);
  if (headless && code != kBiphase) frames.erase(frames.begin());
  if (frames.size() > 1 && Whole(frames.back()) &&
      IsHeadOf(frames.back().Units, frames[frames.size() - 2].Units)) {
    frames.pop_back();
  }
}

/// Gives the first mark back what it lost when the press began unseen, if it can only have been a single one.
void MendFirstMark(const PressTiming& timing, PulseTrain& press) {
  if (timing.Code != kBiphase || timing.OnAir(0, press.front()) >= timing.Unit) return;
  press.front() = static_cast<int>(std::lround(timing.Unit + timing.Excess));
}

/// A sender that is switched on flashes, which is no part of the signal that follows.
void RemoveFlash(PulseTrain& press) {
  constexpr int kLongestFlash = 1000;
  const bool flash = press.size() > 4 && press[0] < kLongestFlash && press[2] >= kShortestLeader;
  if (flash) press.erase(press.begin(), press.begin() + 2);
}

void RemoveGlitches(Pulses press, int shortest, PulseTrain& smooth) {
  smooth.clear();
  bool joined = false;
  for (const int run : press) {
    const bool glitch = run < shortest && !smooth.empty();
    if (joined || glitch) {
      smooth.back() = std::min(smooth.back() + run, kLongestPulse);
    } else {
      smooth.push_back(run);
    }
    joined = glitch && !joined;
  }
  RemoveFlash(smooth);
}

/// The shortest run that is no glitch. Some remotes have marks of 160 us, or spaces of which a receiver
/// leaves as much, and jitter leaves 60 of one. Such a remote has several; a few may be glitches themselves.
int ShortestRunOf(Pulses press) {
  constexpr std::size_t kFew = 4;
  constexpr double kOfShort = 0.4;
  std::array<int, kFew + 1> shortest;  // and no glitches, the shortest first
  shortest.fill(std::numeric_limits<int>::max());
  for (const int run : press) {
    if (run < kShortestRun || run >= shortest.back()) continue;
    shortest.back() = run;
    std::inplace_merge(shortest.begin(), shortest.end() - 1, shortest.end());
  }
  return static_cast<int>(std::min<double>(kShortestRun, kOfShort * shortest.back()));
}

}  // namespace

void RemoveGlitches(Pulses press, PulseTrain& smooth) { RemoveGlitches(press, ShortestRunOf(press), smooth); }

void CleanPress(Pulses press, ShapingSpace& space, PulseTrain& clean) {
  RemoveGlitches(press, kShortestRun, space.Smooth);
  SplitFrames(space.Smooth, space.Frames);
  std::optional<PressTiming> timing = MeasurePress(space.Frames);
  // A first mark that is cut spoils the measure of all.
  if (!timing && space.Frames.size() > 1) timing = MeasurePress(std::span(space.Frames).subspan(1));
  if (!timing) {
    clean = space.Smooth;
    return;
  }

  MendFirstMark(*timing, space.Smooth);
  std::vector<MeasuredFrame>& sound = space.Sound;
  sound.clear();
  space.Units.resize(space.Smooth.size());
  int* units = space.Units.data();
  for (const Frame& frame : space.Frames) {
    if (!WriteUnits(frame, *timing, units)) continue;
    sound.push_back({frame, {units, frame.Runs.size()}});
    units += frame.Runs.size();
  }
  LeaveOutCutFrames(sound, timing->Code);
  if (std::none_of(sound.begin(), sound.end(), Whole)) {
    clean = space.Smooth;
    return;
  }

  space.Frames.clear();
  for (const MeasuredFrame& frame : sound) space.Frames.push_back(frame.Signal);
  JoinFrames(space.Frames, LengthOf(space.Smooth), clean);
}

}  // namespace keplo
