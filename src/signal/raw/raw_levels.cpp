#include "signal/raw/raw_levels.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace keplo {

namespace {

constexpr double kLevelWidth = 165;  // microseconds that jitter spreads the runs of a level, and two samples
constexpr double kBetweenLevels = 55;  // microseconds that no run has between two levels, and a sample
constexpr int kShortestRawMark = 2;    // samples; shorter ones are interference
/// A leader, two to four data lengths and those between parts of a message.
constexpr std::size_t kMostMarkLevels = 6, kMostSpaceLevels = 8;
/// Spaces that mean a digit of sixteen each, between marks of one length.
constexpr std::size_t kMostTellingSpaces = 17;
constexpr std::size_t kLengthsPerLevel = 3;

struct Level {
  int Least, Most;  // samples
  double Sum = 0, Squares = 0;
  int Count = 0;

  /// Runs of levels that touch cannot be told apart one by one, and keep their own lengths.
  bool StandsAlone = true;
  bool Touches = false;  // the level below
  double Mean() const { return Sum / Count; }
  /// Whether its runs are no further from each other than jitter and raster make those of one length.
  bool IsOneLength(double sampleTime) const {
    constexpr double kStray = 50;  // microseconds
    const double variance = Squares / Count - Mean() * Mean();
    return StandsAlone && variance * sampleTime * sampleTime <= kStray * kStray;
  }
};

/// Whether a run is one of its kind: a leader or its space, which may be close to a level of the digits, or
/// what parts two frames.
bool IsSingular(const HeardLengths& heard, std::size_t i) {
  return i < 2 || heard.IsGap(i) || heard.IsGap(i - 1) || heard.IsGap(i - 2);
}

/// The levels of the marks, or of the spaces.
/// @param first place of the first of them
std::vector<Level> LevelsOf(const HeardLengths& heard, std::size_t first) {
  std::vector<int> sorted;
  for (std::size_t i = first; i < heard.Runs.size(); i += 2) {
    if (!IsSingular(heard, i)) sorted.push_back(heard.Runs[i]);
  }
  std::sort(sorted.begin(), sorted.end());
  const double width = kLevelWidth / heard.SampleTime + 2, between = kBetweenLevels / heard.SampleTime + 1;
  std::vector<Level> levels;
  for (const int run : sorted) {
    // Jitter grows a little with the length.
    const bool apart = levels.empty() || run - levels.back().Most > between;
    if (apart || run - levels.back().Least > width + run / 50.0) {
      if (!apart) levels.back().StandsAlone = false;
      levels.push_back({run, run});
      levels.back().StandsAlone = apart;
      levels.back().Touches = !apart;
    }
    levels.back().Most = run;
    levels.back().Sum += run;
    levels.back().Squares += 1.0 * run * run;
    ++levels.back().Count;
  }
  return levels;
}

/// Whether two levels that touch are one length that strays more than usual, as a lamp's does: most of its
/// runs lie about the middle, where two lengths have few. Of two lengths that are not equally frequent only
/// how little each strays tells.
bool IsTorn(const Level& lower, const Level& upper) {
  constexpr double kOfTwo = 15;  // width of two lengths squared, in variances; of one that is normal 25 to 36
  constexpr double kWithin = 0.25;  // share of the variance within two lengths; the halves of one have 0.36
  const double count = lower.Count + upper.Count, mean = (lower.Sum + upper.Sum) / count;
  const double squares = lower.Squares + upper.Squares, variance = squares / count - mean * mean;
  const double width = upper.Most - lower.Least + 1;
  const double within = (squares - lower.Sum * lower.Mean() - upper.Sum * upper.Mean()) / count;
  return width * width > kOfTwo * variance && within > kWithin * variance;
}

/// How many lengths the levels are.
std::size_t LengthsIn(const std::vector<Level>& levels) {
  std::size_t lengths = levels.size();
  for (std::size_t i = 1; i < levels.size(); ++i) {
    if (!levels[i].Touches || !IsTorn(levels[i - 1], levels[i])) continue;
    --lengths;
    ++i;
  }
  return lengths;
}

/// The lengths of a signal with the jitter of its edges taken off: those of a level are as long as its mean,
/// and no edge is off where some around it together were not. A sum of means alone would stray from them.
/// @param means samples; 0 where a run keeps its own length
RawLengths SteadyLengths(const HeardLengths& heard, const std::vector<double>& means) {
  constexpr std::size_t kAround = 4;  // edges ahead and behind
  const std::size_t edges = means.size() + 1;
  std::vector<double> levelled(edges), strays(edges), steady(edges);  // in samples
  double time = 0;
  for (std::size_t i = 0; i < means.size(); ++i) {
    time += heard.Runs[i];
    levelled[i + 1] = levelled[i] + (means[i] != 0 ? means[i] : heard.Runs[i]);
    strays[i + 1] = time - levelled[i + 1];
  }
  for (std::size_t i = 0; i < edges; ++i) {
    std::size_t first = i, last = i;
    while (i - first < kAround && first > 0 && means[first - 1] != 0) --first;
    while (last - i < kAround && last < means.size() && means[last] != 0) ++last;
    double sum = 0;
    for (std::size_t near = first; near <= last; ++near) sum += strays[near];
    steady[i] = levelled[i] + sum / static_cast<double>(last - first + 1);
  }
  const auto us = [&](std::size_t i) { return static_cast<int>(std::lround(steady[i] * heard.SampleTime)); };
  RawLengths lengths;
  for (std::size_t i = 0; i < means.size(); ++i) lengths.push_back(us(i + 1) - us(i));
  return lengths;
}

/// Whether a frame of pulses was sent again and again, as many in each, perhaps after a mark far ahead: no
/// lamp does that. The last one may be cut.
bool SendsFramesOfOneSize(const HeardLengths& heard) {
  constexpr std::size_t kShortestFrame = 9, kEnough = 2 * kFewestRawLengths - 1;
  std::size_t size = 0, frames = 0, lengths = 0;
  for (HeardLengths rest = heard; !rest.Runs.empty();) {
    const std::size_t piece = FirstFrameOf(rest);
    const bool cut = heard.Cut && piece == rest.Runs.size();
    if (piece > 1 && !(cut && piece < kShortestFrame)) {
      if (frames++ == 0) size = piece;
      if (piece < kShortestFrame || piece > size || (piece < size && !cut)) return false;
      lengths += piece;
    }
    rest = rest.From(std::min(piece + 1, rest.Runs.size()));
  }
  return frames > 1 && lengths >= kEnough;
}

/// Whether there are marks that are too short for the others to be the remote's.
bool HasTooShortMarks(const std::vector<Level>& marks) {
  constexpr double kOfUsual = 0.25;
  const auto usual = std::max_element(marks.begin(), marks.end(), [](const Level& one, const Level& other) {
    return one.Count < other.Count;
  });
  return marks.front().Least < kShortestRawMark && marks.front().Least < kOfUsual * usual->Mean();
}

std::size_t MostSpaceLevels(const std::vector<Level>& marks) {
  return LengthsIn(marks) == 1 ? kMostTellingSpaces : kMostSpaceLevels;
}

bool IsCleanSignal(const HeardLengths& heard, const std::vector<Level>& marks,
                   const std::vector<Level>& spaces) {
  if (marks.empty() || spaces.empty() || HasTooShortMarks(marks)) return false;
  const std::size_t levels = marks.size() + spaces.size();
  return (LengthsIn(marks) + LengthsIn(spaces) > 2 || SendsFramesOfOneSize(heard)) &&
         marks.size() <= kMostMarkLevels && spaces.size() <= MostSpaceLevels(marks) &&
         levels * kLengthsPerLevel <= heard.Runs.size();
}

}  // namespace

bool IsNoise(const HeardLengths& heard) {
  constexpr std::size_t kMostTorn = 2;   // levels that jitter makes of one
  constexpr std::size_t kTelling = 200;  // lengths that are enough to tell
  HeardLengths head = heard.Part(0, std::min(heard.Runs.size(), kTelling));
  head.Cut = true;
  const std::vector<Level> marks = LevelsOf(head, 0), spaces = LevelsOf(head, 1);
  if (marks.size() > kMostMarkLevels + kMostTorn || spaces.size() > MostSpaceLevels(marks) + kMostTorn)
    return true;
  return LengthsIn(marks) < 2 && LengthsIn(spaces) < 2 && !SendsFramesOfOneSize(heard);
}

std::optional<LeveledSignal> FindLevels(const HeardLengths& heard) {
  const RunSpan runs = heard.Runs;
  if (runs.size() < kFewestRawLengths) return std::nullopt;
  const std::vector<Level> marks = LevelsOf(heard, 0);
  const std::vector<Level> spaces = LevelsOf(heard, 1);
  if (!IsCleanSignal(heard, marks, spaces)) return std::nullopt;
  LeveledSignal signal;
  std::vector<double> means;
  for (std::size_t i = 0; i < runs.size(); ++i) {
    const std::vector<Level>& levels = i % 2 == 0 ? marks : spaces;
    const auto level = IsSingular(heard, i) ? levels.end()
                                            : std::find_if(levels.begin(), levels.end(),
                                                           [&](const Level& l) { return runs[i] <= l.Most; });
    means.push_back(level != levels.end() && level->IsOneLength(heard.SampleTime) ? level->Mean() : 0);
    signal.Levels.push_back(static_cast<int>(level - levels.begin()));
  }
  signal.Lengths = SteadyLengths(heard, means);
  return signal;
}

}  // namespace keplo
