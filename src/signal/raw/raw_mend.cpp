#include "signal/raw/raw_mend.h"

#include <cstdlib>
#include <utility>

namespace keplo {

namespace {

/// Whether a frame has edges of the other one alone, from its beginning to its end, but not all.
bool LacksEdgesOf(RunSpan frame, RunSpan other) {
  constexpr int kNear = 3;  // samples
  if (frame.size() >= other.size()) return false;
  int edge = 0, otherEdge = 0;
  std::size_t next = 0;
  for (std::size_t i = 0; i < frame.size(); ++i) {
    edge += frame[i];
    do {
      if (next == other.size()) return false;
      otherEdge += other[next++];
    } while (otherEdge < edge - kNear || next % 2 == i % 2);
    if (std::abs(otherEdge - edge) > kNear) return false;
  }
  return next == other.size();
}

}  // namespace

SoundFrames::SoundFrames(const HeardLengths& heard) : sound_(heard) {
  std::vector<RunSpan> frames;
  for (std::size_t begin = 0; begin < heard.Runs.size(); begin += frames.back().size() + 1) {
    frames.push_back(heard.Runs.subspan(begin, FirstFrameOf(heard.From(begin))));
  }
  const auto lacksEdgesOf = [&](std::size_t i, std::size_t other) {
    return other < frames.size() && LacksEdgesOf(frames[i], frames[other]);
  };
  std::vector<int> kept;
  for (std::size_t i = 0; i < frames.size(); ++i) {
    if (lacksEdgesOf(i, i - 1) || lacksEdgesOf(i, i + 1)) continue;
    if (!kept.empty()) kept.push_back(*(frames[i].data() - 1));
    kept.insert(kept.end(), frames[i].begin(), frames[i].end());
  }
  if (kept.size() == heard.Runs.size()) return;
  runs_ = std::move(kept);
  sound_.Runs = runs_;
}

}  // namespace keplo
