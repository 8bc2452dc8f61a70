#include "line/shaper.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <optional>
#include <vector>

#include "line/frames.h"

namespace keplo {

namespace {

/// What the receiver did to the press.
struct Receiver {
  double Unit;    // base time, microseconds
  double Excess;  // by which marks are too long and spaces too short, microseconds
};

/// Excess that a receiver may have, microseconds; what lies beyond is another line code.
constexpr double kLeastExcess = -160;
constexpr double kMostExcess = 260;

struct Pair {
  int Mark, Space;
  int Length() const { return Mark + Space; }
};

/// Shortest mark-and-space pairs of a press. In every line code they are one base time each, and their length
/// is free of the excess, since what one gains the other loses.
std::vector<Pair> ShortestPairs(const std::vector<Frame>& frames) {
  std::vector<Pair> pairs;
  for (const Frame& frame : frames) {
    for (std::size_t i = 0; i + 1 < frame.Runs.size(); i += 2) {
      pairs.push_back({frame.Runs[i], frame.Runs[i + 1]});
    }
  }
  std::sort(pairs.begin(), pairs.end(), [](const Pair& a, const Pair& b) { return a.Length() < b.Length(); });
  // The next longer pair is three base times, against two.
  const auto end = std::find_if(pairs.begin(), pairs.end(), [&](const Pair& pair) {
    return pair.Length() * 4 >= pairs.front().Length() * 5;
  });
  pairs.erase(end, pairs.end());
  return pairs;
}

std::optional<Receiver> MeasureReceiver(const std::vector<Frame>& frames) {
  const std::vector<Pair> pairs = ShortestPairs(frames);
  constexpr std::size_t kFewestPairs = 2;
  if (pairs.size() < kFewestPairs) return std::nullopt;
  double marks = 0;
  double spaces = 0;
  for (const Pair& pair : pairs) {
    marks += pair.Mark;
    spaces += pair.Space;
  }
  const auto count = static_cast<double>(pairs.size());
  const Receiver receiver = {(marks + spaces) / count / 2, (marks - spaces) / count / 2};
  if (receiver.Excess < kLeastExcess || receiver.Excess > kMostExcess) return std::nullopt;
  return receiver;
}

}  // namespace

PulseTrain ShapePress(const PulseTrain& press, std::size_t /*bufferBytes*/, const LineOptions& /*options*/) {
  const std::vector<Frame> frames = SplitFrames(press);
  const std::optional<Receiver> receiver = MeasureReceiver(frames);
  if (!receiver) return press;
  PulseTrain shaped = press;
  for (std::size_t i = 0; i < shaped.size(); ++i) {
    shaped[i] += static_cast<int>(std::lround(i % 2 == 0 ? -receiver->Excess : receiver->Excess));
  }
  return shaped;
}

}  // namespace keplo
