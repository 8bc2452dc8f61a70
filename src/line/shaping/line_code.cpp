#include "line/shaping/line_code.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>

namespace keplo {

namespace {

/// Excess that a receiver may have, microseconds: 50 to 150 is common, and weak signals come out short. A
/// difference beyond comes of a line code whose shortest mark and space differ.
constexpr double kLeastExcess = -160;
constexpr double kMostExcess = 260;

constexpr double kLeastLeaderUnits = 3.5;  // SONY has four

/// Lengths of single marks and spaces, summed up.
struct Singles {
  std::array<double, 2> Sums = {};  // marks, spaces
  std::array<double, 2> Counts = {};

  void Add(std::size_t place, int run) {
    Sums.at(place % 2) += run;
    Counts.at(place % 2) += 1;
  }

  std::optional<PressTiming> Timing(const LineUnits& code) const {
    if (Counts[0] == 0 || Counts[1] == 0) return std::nullopt;
    const double mark = Sums[0] / Counts[0];
    const double space = Sums[1] / Counts[1];
    const PressTiming timing = {(mark + space) / 2, (mark - space) / 2, code};
    if (timing.Excess < kLeastExcess || timing.Excess > kMostExcess) return std::nullopt;
    return timing;
  }
};

/// Runs of one kind, marks or spaces, by the whole number of base times that they are near.
struct RunCounts {
  std::array<int, kMostUnits + 1> Near = {};
  int All = 0;

  void Count(double units) {
    constexpr double kNear = 0.35;
    ++All;
    if (units < 1 - kNear || units > kMostUnits + kNear) return;
    const int whole = static_cast<int>(std::lround(units));
    if (std::abs(units - whole) <= kNear) ++Near.at(static_cast<std::size_t>(whole));
  }

  /// A single run may be damaged; a length of the code has more than one in twenty.
  bool Has(std::size_t units) const { return Near.at(units) * 20 > All; }

  /// The longer of the two lengths, 1 if there is one length alone, 0 if the lengths are others than these.
  int Longer() const {
    constexpr double kLeastNear = 0.8;  // part of all runs
    if (Near[1] + Near[2] + Near[3] < kLeastNear * All || !Has(1) || (Has(2) && Has(3))) return 0;
    return Has(3) ? 3 : Has(2) ? 2 : 1;
  }
};

bool IsLeader(const Frame& frame, std::size_t place, const PressTiming& timing) {
  const auto isLong = [&](std::size_t i) {
    return timing.OnAir(i, frame.Runs[i]) > kLeastLeaderUnits * timing.Unit;
  };
  return place <= 1 && isLong(0) && isLong(place);
}

std::optional<LineUnits> FindLineCode(std::span<const Frame> frames, const PressTiming& timing) {
  std::array<RunCounts, 2> counts;  // marks, spaces
  for (const Frame& frame : frames) {
    for (std::size_t i = 0; i < frame.Runs.size(); ++i) {
      if (!IsLeader(frame, i, timing)) {
        counts.at(i % 2).Count(timing.OnAir(i, frame.Runs[i]) / timing.Unit);
      }
    }
  }
  const LineUnits found = {counts[0].Longer(), counts[1].Longer()};
  constexpr std::array kLineCodes = {kPulseDistance2, kPulseDistance3, kPulseWidth, kBiphase};
  if (std::find(kLineCodes.begin(), kLineCodes.end(), found) == kLineCodes.end()) return std::nullopt;
  return found;
}

/// The shortest mark-and-space pairs of a press. In every line code they are one base time each, and their
/// length is free of the excess, since what the mark gains the space loses. The next longer pairs are three
/// base times long, against two.
Singles ShortestPairs(std::span<const Frame> frames) {
  constexpr int kNone = std::numeric_limits<int>::max();
  const auto eachPair = [&](const auto& take) {
    for (const Frame& frame : frames) {
      for (std::size_t i = 0; i + 1 < frame.Runs.size(); i += 2) take(frame.Runs[i], frame.Runs[i + 1]);
    }
  };
  int shortest = kNone;
  eachPair([&](int mark, int space) { shortest = std::min(shortest, mark + space); });
  Singles pairs;
  eachPair([&](int mark, int space) {
    if ((mark + space) * 4 >= shortest * 5) return;
    pairs.Add(0, mark);
    pairs.Add(1, space);
  });
  return pairs;
}

/// Units of the run of a frame; nothing if it is no length of the line code.
std::optional<int> NearestUnits(double length, int longer) {
  const int nearest = 2 * length < 1 + longer ? 1 : longer;
  // Two fifths of the way to the other length; where there is none, as if it were three units.
  const double tolerance = 0.4 * (longer == 1 ? 2 : longer - 1);
  if (std::abs(length - nearest) > tolerance) return std::nullopt;
  return nearest;
}

/// Calls with place and units of each run of a frame.
/// @return false at the first run that is no length of the line code
template <typename Take>
bool EachRun(const Frame& frame, const PressTiming& timing, const Take& take) {
  for (std::size_t i = 0; i < frame.Runs.size(); ++i) {
    if (IsLeader(frame, i, timing)) {
      take(i, kLeader);
      continue;
    }
    const int longer = i % 2 == 0 ? timing.Code.LongMark : timing.Code.LongSpace;
    const std::optional<int> units = NearestUnits(timing.OnAir(i, frame.Runs[i]) / timing.Unit, longer);
    if (!units) return false;
    take(i, *units);
  }
  return true;
}

}  // namespace

std::optional<PressTiming> MeasurePress(std::span<const Frame> frames) {
  const std::optional<PressTiming> rough = ShortestPairs(frames).Timing({1, 1});
  if (!rough) return std::nullopt;
  const std::optional<LineUnits> code = FindLineCode(frames, *rough);
  if (!code) return std::nullopt;

  // Once more over all single runs, which are more than the shortest pairs.
  Singles singles;
  for (const Frame& frame : frames) {
    Singles ofFrame = singles;
    const bool fits = EachRun(frame, {rough->Unit, rough->Excess, *code}, [&](std::size_t i, int units) {
      if (units == 1) ofFrame.Add(i, frame.Runs[i]);
    });
    if (fits) singles = ofFrame;
  }
  return singles.Timing(*code);
}

bool WriteUnits(const Frame& frame, const PressTiming& timing, int* units) {
  return EachRun(frame, timing, [&](std::size_t i, int length) { units[i] = length; });
}

}  // namespace keplo
