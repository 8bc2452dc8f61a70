#include "signal/raw/raw_levels.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdlib>

namespace keplo {

namespace {

constexpr int kLevelWidth = 5;       // samples from the shortest to the longest run of a level
constexpr int kBetweenLevels = 2;    // samples that no run has, at the least, between two levels
constexpr int kShortestRawMark = 2;  // samples; shorter ones are interference
/// A leader, two to four data lengths and those between parts of a message.
constexpr std::size_t kMostMarkLevels = 6, kMostSpaceLevels = 8;
constexpr std::size_t kLengthsPerLevel = 3;

struct Level {
  int Least, Most;  // samples
  double Sum = 0;
  int Count = 0;

  /// Runs of levels that touch cannot be told apart one by one, and keep their own lengths.
  bool StandsAlone = true;
  int Microseconds() const { return static_cast<int>(std::lround(Sum / Count * kNominalSampleTime)); }
};

bool IsLongSpace(RunSpan runs, std::size_t i) {
  return i % 2 == 1 && runs[i] * kNominalSampleTime >= kRawGap;
}

/// Whether a run is one of its kind: a leader or its space, which may be close to a level of the digits, or
/// what parts two frames.
bool IsSingular(RunSpan runs, std::size_t i) {
  return i < 2 || IsLongSpace(runs, i) || IsLongSpace(runs, i - 1) || IsLongSpace(runs, i - 2);
}

/// The levels of the marks, or of the spaces.
/// @param first place of the first of them
std::vector<Level> LevelsOf(RunSpan runs, std::size_t first) {
  std::vector<int> sorted;
  for (std::size_t i = first; i < runs.size(); i += 2) {
    if (!IsSingular(runs, i)) sorted.push_back(runs[i]);
  }
  std::sort(sorted.begin(), sorted.end());
  std::vector<Level> levels;
  for (const int run : sorted) {
    // Jitter grows a little with the length.
    const bool joins = !levels.empty() && run - levels.back().Least <= kLevelWidth + run / 50 &&
                       run - levels.back().Most <= kBetweenLevels;
    if (!joins) {
      const bool apart = levels.empty() || run - levels.back().Most > kBetweenLevels;
      if (!apart) levels.back().StandsAlone = false;
      levels.push_back({run, run});
      levels.back().StandsAlone = apart;
    }
    levels.back().Most = run;
    levels.back().Sum += run;
    ++levels.back().Count;
  }
  return levels;
}

/// Whether the mean of a level would say something else than the run: the signal has to fit itself.
bool IsFarFrom(const Level& level, int run) {
  constexpr int kNear = 3 * kNominalSampleTime / 2;  // microseconds; what jitter and raster make of a length
  return std::abs(run * kNominalSampleTime - level.Microseconds()) > kNear;
}

bool IsCleanSignal(RunSpan runs, const std::vector<Level>& marks, const std::vector<Level>& spaces) {
  if (marks.empty() || spaces.empty() || marks.front().Least < kShortestRawMark) return false;
  const std::size_t levels = marks.size() + spaces.size();
  return levels > 2 && marks.size() <= kMostMarkLevels && spaces.size() <= kMostSpaceLevels &&
         levels * kLengthsPerLevel <= runs.size();
}

}  // namespace

std::optional<LeveledSignal> FindLevels(const HeardLengths& heard) {
  const RunSpan runs = heard.Runs;
  if (runs.size() < kFewestRawLengths) return std::nullopt;
  const std::vector<Level> marks = LevelsOf(runs, 0);
  const std::vector<Level> spaces = LevelsOf(runs, 1);
  if (!IsCleanSignal(runs, marks, spaces)) return std::nullopt;
  LeveledSignal signal;
  for (std::size_t i = 0; i < runs.size(); ++i) {
    const std::vector<Level>& levels = i % 2 == 0 ? marks : spaces;
    const auto level = IsSingular(runs, i) ? levels.end()
                                           : std::find_if(levels.begin(), levels.end(),
                                                          [&](const Level& l) { return runs[i] <= l.Most; });
    const bool own = level == levels.end() || !level->StandsAlone || IsFarFrom(*level, runs[i]);
    signal.Lengths.push_back(own ? runs[i] * kNominalSampleTime : level->Microseconds());
    signal.Levels.push_back(static_cast<int>(level - levels.begin()));
  }
  return signal;
}

}  // namespace keplo
