#include "signal/raw/raw_mend.h"

#include <algorithm>
#include <cstdlib>
#include <utility>

namespace keplo {

namespace {

constexpr int kNear = 3;  // samples

/// Whether a frame has edges of the other one alone, from its beginning to its end, but not all.
bool LacksEdgesOf(RunSpan frame, RunSpan other) {
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

bool IsSameFrame(RunSpan frame, RunSpan other) {
  return std::equal(frame.begin(), frame.end(), other.begin(), other.end(),
                    [](int a, int b) { return std::abs(a - b) <= kNear; });
}

/// A part of a message may have edges of another one alone, too, but is sent as often as that.
bool IsDamaged(const std::vector<RunSpan>& frames, std::size_t place) {
  constexpr std::size_t kAround = 3;
  int whole = 0;
  const std::size_t end = std::min(frames.size(), place + kAround + 1);
  for (std::size_t i = place - std::min(place, kAround); i < end; ++i) {
    if (i == place) continue;
    if (IsSameFrame(frames[place], frames[i])) return false;
    whole += LacksEdgesOf(frames[place], frames[i]) ? 1 : 0;
  }
  return whole > 1;
}

}  // namespace

SoundFrames::SoundFrames(const HeardLengths& heard) : sound_(heard) {
  std::vector<RunSpan> frames;
  for (std::size_t begin = 0; begin < heard.Runs.size(); begin += frames.back().size() + 1) {
    frames.push_back(heard.Runs.subspan(begin, FirstFrameOf(heard.From(begin))));
  }
  std::vector<int> kept;
  for (std::size_t i = 0; i < frames.size(); ++i) {
    if (IsDamaged(frames, i)) {
      if (i + 1 == frames.size()) sound_.Cut = false;
      continue;
    }
    if (!kept.empty()) kept.push_back(*(frames[i].data() - 1));
    kept.insert(kept.end(), frames[i].begin(), frames[i].end());
  }
  if (kept.size() == heard.Runs.size()) return;
  runs_ = std::move(kept);
  sound_.Runs = runs_;
}

}  // namespace keplo
