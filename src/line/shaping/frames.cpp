#include "line/shaping/frames.h"

#include <algorithm>
#include <cstddef>
#include <numeric>

namespace keplo {

namespace {

/// A space longer than this stands between two frames, microseconds: longer than the leader space of any
/// known remote (5 ms at most), shorter than the silence after the longest SONY frame (6.6 ms).
constexpr int kShortestGap = 6000;

}  // namespace

std::int64_t LengthOf(Pulses press) { return std::accumulate(press.begin(), press.end(), std::int64_t{0}); }

std::int64_t Frame::Length() const { return LengthOf(Runs); }

void SplitFrames(Pulses press, std::vector<Frame>& frames) {
  frames.clear();
  std::int64_t time = 0;
  std::int64_t start = 0;
  std::size_t first = 0;
  for (std::size_t i = 0; i < press.size(); i += 2) {
    time += press[i];
    const std::size_t space = i + 1;
    const bool ends = space + 1 >= press.size() || press[space] > kShortestGap;
    if (space < press.size()) time += press[space];
    if (!ends) continue;
    frames.push_back({press.subspan(first, space - first), start});
    first = space + 1;
    start = time;
  }
}

void JoinFrames(std::span<const Frame> frames, std::int64_t end, PulseTrain& press) {
  press.clear();
  if (frames.empty()) return;
  std::int64_t time = frames.front().Start;
  const auto silenceUntil = [&](std::int64_t until) {
    if (until <= time) return;
    press.push_back(static_cast<int>(std::min<std::int64_t>(until - time, kLongestPulse)));
    time = until;
  };
  for (const Frame& frame : frames) {
    silenceUntil(frame.Start);
    press.insert(press.end(), frame.Runs.begin(), frame.Runs.end());
    time += frame.Length();
  }
  silenceUntil(end);
}

}  // namespace keplo
