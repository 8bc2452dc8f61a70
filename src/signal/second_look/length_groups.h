#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <vector>

#include "signal/runs.h"

namespace keplo::robust {

/// Runs of about one length.
struct Length {
  int Least = 0, Most = 0;
  double Mean = 0;
};

/// The lengths into which the marks or the spaces of a frame fall, the shortest first.
struct Lengths {
  static constexpr std::size_t kMost = 4;
  std::array<Length, kMost> Of{};
  std::size_t Number = 0;  // 0: no tight groups

  const Length& Short() const { return Of[0]; }
  const Length& Long() const { return Of[1]; }
  const Length& Longest() const { return Of.at(Number - 1); }
  /// The shortest run that counts as the longer of two lengths. With one length, or more than two, none does.
  int LeastLong() const {
    return Number == 2 ? (Short().Most + Long().Least) / 2 + 1 : std::numeric_limits<int>::max();
  }
  bool IsLong(int run) const { return run >= LeastLong(); }
};

/// Counts the runs of each length; reuses its buffers from one piece of a press to the next.
class LengthCounts {
 public:
  /// Counts the first of some runs and every other one after it.
  /// @param longest what a longer one counts as; 64 or more
  void CountEveryOther(RunSpan runs, int longest);
  void Clear();

  /// 0 without runs.
  int Longest() const;

  /// A quarter of the runs are no longer than this; 0 without runs.
  /// @param all how many were counted
  int LowerQuartile(std::size_t all) const;

  /// Splits the runs where the next longer one is a good part of a base time longer.
  /// @param unit base time, samples; roughly
  Lengths Groups(double unit) const;

 private:
  static constexpr std::size_t kBits = 64;

  void CountLong(std::size_t length);
  int CountOf(std::size_t length) const { return counts_[0][length] + counts_[1][length]; }

  /// Two counters for each length, used in turn: equal runs often follow each other, and an addition to a
  /// counter in memory waits for the one before it.
  std::array<std::vector<int>, 2> counts_ = {std::vector<int>(kBits), std::vector<int>(kBits)};
  std::vector<std::uint64_t> occupied_ = {0};  // a bit for each length that occurs
  std::size_t words_ = 1;                      // of these that hold any
};

/// From the shorter of two lengths to the longer, samples; free of excess.
double Step(const Lengths& lengths);

/// Whether no run lies anywhere near the middle between the two lengths.
bool IsClear(const Lengths& lengths);

constexpr bool Within(double value, double least, double most) { return value >= least && value <= most; }

}  // namespace keplo::robust
