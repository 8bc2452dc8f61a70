#include "line/shaping/frames.h"

#include <cstddef>
#include <limits>
#include <numeric>

namespace keplo {

namespace {

/// A space longer than this stands between two frames, microseconds: longer than the leader space of any
/// known remote (5 ms at most), shorter than the silence behind the longest SONY frame (6.6 ms).
constexpr int kFrameGap = 6000;

}  // namespace

std::int64_t LengthOf(const PulseTrain& train) {
  return std::accumulate(train.begin(), train.end(), std::int64_t{0});
}

std::int64_t Frame::Length() const { return LengthOf(Runs); }

std::vector<Frame> SplitFrames(const PulseTrain& train) {
  std::vector<Frame> frames;
  std::int64_t time = 0;
  bool betweenFrames = true;
  for (std::size_t i = 0; i < train.size(); ++i) {
    const bool isMark = i % 2 == 0;
    const bool isLast = i + 1 == train.size();
    if (!isMark && (isLast || train[i] > kFrameGap)) {
      betweenFrames = true;
    } else {
      if (betweenFrames) frames.push_back({{}, time});
      betweenFrames = false;
      frames.back().Runs.push_back(train[i]);
    }
    time += train[i];
  }
  return frames;
}

PulseTrain JoinFrames(const std::vector<Frame>& frames, std::int64_t end) {
  PulseTrain train;
  if (frames.empty()) return train;
  std::int64_t time = frames.front().Start;
  const auto silenceUntil = [&](std::int64_t until) {
    if (until <= time) return;
    train.push_back(static_cast<int>(std::min<std::int64_t>(until - time, kLongestPulse)));
    time = until;
  };
  for (const Frame& frame : frames) {
    silenceUntil(frame.Start);
    train.insert(train.end(), frame.Runs.begin(), frame.Runs.end());
    time += frame.Length();
  }
  silenceUntil(end);
  return train;
}

}  // namespace keplo
