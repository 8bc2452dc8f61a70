#include "signal/raw/raw_frames.h"

#include <algorithm>
#include <cstdlib>
#include <numeric>

namespace keplo {

namespace {

/// Of two lengths of one press, microseconds: edges stray by up to 25, and two samples.
constexpr int kMostApart = 240;
/// Parts of one message follow each other sooner than messages do, microseconds.
constexpr int kLongestPause = 40'000;
/// What every capture holds, microseconds.
constexpr double kSurelyCaptured = 190'000;

}  // namespace

std::size_t LengthsInPlace(const HeardLengths& heard) {
  const std::size_t first = FirstFrameOf(heard);
  if (first >= kFewestRawLengths || first >= heard.Runs.size()) return first;
  return first + 1 + FirstFrameOf(heard.From(first + 1));
}

RawFrames::RawFrames(std::span<const int> lengths, int gap) : lengths_(lengths) {
  for (std::size_t begin = 0; begin < lengths.size(); begin = frames_.back().End + 1) {
    std::size_t end = begin + 1;
    while (end < lengths.size() && lengths[end] < gap) end += 2;
    Frame frame{begin, std::min(end, lengths.size()), 0};
    if (!frames_.empty()) frame.Step = LastStep() + (AreEqual(frames_.back(), frame) ? 0 : 1);
    frames_.push_back(frame);
  }
}

bool RawFrames::AreEqual(const Frame& a, const Frame& b) const {
  const std::span<const int> left = Lengths(a), right = Lengths(b);
  return std::equal(left.begin(), left.end(), right.begin(), right.end(),
                    [](int one, int other) { return std::abs(one - other) <= kMostApart; });
}

std::size_t RawFrames::StepUpTo(std::size_t end) const {
  const auto frame =
      std::find_if(frames_.begin(), frames_.end() - 1, [&](const Frame& each) { return each.End >= end; });
  return frame->Step;
}

const RawFrames::Frame& RawFrames::FirstOf(std::size_t step) const {
  return *std::find_if(frames_.begin(), frames_.end() - 1,
                       [&](const Frame& frame) { return frame.Step == step; });
}

bool RawFrames::MayFollow(std::size_t step, std::size_t next) const {
  if (step == LastStep() || next == step + 1) return true;
  return next == step && (step > 0 || frames_[1].Step == 0);
}

bool RawFrames::TellsOfRepeat(std::size_t step) const {
  const bool isFramed = LastStep() == 2 && AreEqual(frames_.front(), frames_.back());
  if (isFramed) return step == 1;
  const std::size_t begin = step == 0 ? 0 : FirstOf(step).Begin;
  return std::accumulate(lengths_.begin(), lengths_.begin() + static_cast<std::ptrdiff_t>(begin), 0.0) <
         kSurelyCaptured;
}

int LongestPeriodOf(std::span<const int> lengths) {
  int longest = 0;
  std::size_t begin = 0;
  const RawFrames frames(lengths, RawGapOf(lengths));
  for (const RawFrames::Frame& frame : frames.All()) {
    const auto before = lengths.subspan(begin, frame.Begin - begin);
    longest = std::max(longest, std::accumulate(before.begin(), before.end(), 0));
    begin = frame.Begin;
  }
  return longest;
}

bool RawFrames::MayEndWith(std::size_t step, double heard) const {
  if (step == LastStep()) return true;
  const Frame& next = FirstOf(step + 1);
  if (next.End - next.Begin <= kLongestDitto) return true;
  const int pause = GapAhead(step + 1);
  const bool isPart = pause < kLongestPause || (step == 0 && LastStep() > 1);
  return !isPart || heard + pause > kSurelyCaptured;
}

}  // namespace keplo
