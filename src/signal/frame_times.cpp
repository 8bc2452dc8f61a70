#include "signal/frame_times.h"

#include <algorithm>
#include <cstdlib>
#include <numeric>

namespace keplo {

namespace {

/// Longer than any space inside a frame, shorter than any between two, of which Dish has 5.9 ms.
constexpr double kBetweenFrames = 5200;  // microseconds
constexpr std::size_t kSignRuns = 3;

/// Whether two pieces are one frame, heard twice; a capture may have begun within the first mark of one.
bool IsSameFrame(const TimedPiece& one, const TimedPiece& other, double sampleTime) {
  constexpr double kSameRun = 220, kFewest = 4;  // microseconds, and samples
  const double slack = std::max(kSameRun / sampleTime, kFewest);
  return one.Runs.size() == other.Runs.size() &&
         std::equal(one.Runs.begin() + 1, one.Runs.end(), other.Runs.begin() + 1,
                    [slack](int a, int b) { return std::abs(a - b) <= slack; });
}

/// Whether a piece that is cut may be a frame.
bool BeginsAlike(const TimedPiece& cut, const TimedPiece& frame, double sampleTime) {
  const std::size_t whole = cut.Runs.size() - 1;
  return whole < frame.Runs.size() &&
         IsSameFrame({cut.Runs.first(whole)}, {frame.Runs.first(whole)}, sampleTime);
}

/// Whether a key that repeats its frame so often cannot have let so much time pass, not even where one of
/// its frames was lost.
bool IsTooLate(int distance, int usual, double sampleTime) {
  constexpr double kSlack = 9900;  // microseconds; remotes do not count their silence out
  const bool lostOne = std::abs(distance - 2 * usual) <= usual / 8;
  return !lostOne && 2 * distance > 3 * usual + 2 * kSlack / sampleTime;
}

}  // namespace

int TimedPiece::End() const { return std::accumulate(Runs.begin(), Runs.end(), Begin); }

std::vector<TimedPiece> PiecesIn(RunSpan runs, double sampleTime) {
  if (!runs.empty() && runs.front() == 0) {
    std::vector<TimedPiece> pieces =
        PiecesIn(runs.subspan(std::min<std::size_t>(2, runs.size())), sampleTime);
    for (TimedPiece& piece : pieces) piece.Begin += runs[1];
    return pieces;
  }
  std::vector<TimedPiece> pieces;
  int begin = 0, time = 0;
  std::size_t first = 0;
  for (std::size_t i = 0; i < runs.size(); ++i) {
    const bool gap = i % 2 == 1 && runs[i] * sampleTime >= kBetweenFrames;
    if (gap || (i % 2 == 1 && i + 1 == runs.size()))
      pieces.push_back({runs.subspan(first, i - first), begin, gap});
    time += runs[i];
    if (!gap) continue;
    first = i + 1;
    begin = time;
  }
  if (EndsInMark(runs)) pieces.push_back({runs.subspan(first), begin, false});
  return pieces;
}

int FramePeriod(std::span<const TimedPiece> pieces) {
  int period = 0;
  for (std::size_t i = 1; i < pieces.size(); ++i)
    period = std::max(period, pieces[i].Begin - pieces[i - 1].Begin);
  return period;
}

std::size_t FindSecondTap(std::span<const TimedPiece> pieces, const UsualRepeat& usual, double sampleTime) {
  constexpr double kLeastPause = 60000;  // microseconds, that long frames have too
  int shortest = usual.Heard;            // from one frame to an equal one right behind it
  for (std::size_t i = 1; i < pieces.size(); ++i) {
    const TimedPiece& piece = pieces[i];
    const TimedPiece& before = pieces[i - 1];
    const auto isSame = [&](const TimedPiece& other) { return IsSameFrame(other, piece, sampleTime); };
    const auto mayBeCutOf = [&](const TimedPiece& other) { return BeginsAlike(piece, other, sampleTime); };
    const auto ahead = pieces.first(i);
    if (!piece.IsFrame()) continue;
    if (piece.Whole ? std::none_of(ahead.begin(), ahead.end(), isSame)
                    : std::any_of(ahead.begin(), ahead.end(), mayBeCutOf))
      continue;
    const int distance = piece.Begin - before.Begin;
    const bool paused = distance > usual.Longest && (piece.Begin - before.End()) * sampleTime >= kLeastPause;
    if (shortest > 0 ? IsTooLate(distance, shortest, sampleTime) : paused) return i;
    if (usual.BySigns && before.Runs.size() == kSignRuns) return i;
    if (isSame(before) && (shortest == 0 || distance < shortest)) shortest = distance;
  }
  return 0;
}

}  // namespace keplo
