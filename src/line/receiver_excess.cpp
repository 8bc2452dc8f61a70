#include "line/receiver_excess.h"

#include <algorithm>
#include <cstddef>

namespace keplo {

namespace {

/// Excess that a receiver may have, microseconds: 50 to 150 is common, and weak signals come out short. A
/// difference beyond comes of a line code whose shortest mark and space differ.
constexpr double kLeastExcess = -160;
constexpr double kMostExcess = 260;

constexpr std::size_t kFewestPairs = 2;

struct Pair {
  int Mark, Space;
  int Length() const { return Mark + Space; }
};

/// The pair lengths are free of the excess, since what the mark gains the space loses. The next longer pairs
/// are three base times long, against two.
std::vector<Pair> ShortestPairs(const std::vector<Frame>& frames) {
  std::vector<Pair> pairs;
  for (const Frame& frame : frames) {
    for (std::size_t i = 0; i + 1 < frame.Runs.size(); i += 2) {
      pairs.push_back({frame.Runs[i], frame.Runs[i + 1]});
    }
  }
  std::sort(pairs.begin(), pairs.end(), [](const Pair& a, const Pair& b) { return a.Length() < b.Length(); });
  const auto longer = std::find_if(pairs.begin(), pairs.end(), [&](const Pair& pair) {
    return pair.Length() * 4 >= pairs.front().Length() * 5;
  });
  pairs.erase(longer, pairs.end());
  return pairs;
}

}  // namespace

std::optional<ReceiverExcess> MeasureReceiverExcess(const std::vector<Frame>& frames) {
  const std::vector<Pair> pairs = ShortestPairs(frames);
  if (pairs.size() < kFewestPairs) return std::nullopt;
  double marks = 0;
  double spaces = 0;
  for (const Pair& pair : pairs) {
    marks += pair.Mark;
    spaces += pair.Space;
  }
  const double halves = 2.0 * static_cast<double>(pairs.size());
  const ReceiverExcess measured = {(marks + spaces) / halves, (marks - spaces) / halves};
  if (measured.Excess < kLeastExcess || measured.Excess > kMostExcess) return std::nullopt;
  return measured;
}

}  // namespace keplo
