#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

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
  bool IsLong(int run) const { return Number == 2 && 2 * run > Short().Most + Long().Least; }
};

/// Counts the runs of each length; keeps its memory from one piece of a press to the next.
class LengthCounts {
 public:
  void Count(int length) {
    const auto place = static_cast<std::size_t>(length);
    if (place >= counts_.size()) Grow(place);
    ++counts_[place];
    occupied_[place / kBits] |= std::uint64_t{1} << place % kBits;
  }
  void Clear();

  /// A quarter of the runs are no longer than this; 0 without runs.
  /// @param all how many were counted
  int LowerQuartile(std::size_t all) const;

  /// Splits the runs where the next longer one is a good part of a base time longer.
  /// @param unit base time, samples; roughly
  Lengths Groups(double unit) const;

 private:
  static constexpr std::size_t kBits = 64;

  void Grow(std::size_t place);

  std::vector<int> counts_;
  std::vector<std::uint64_t> occupied_;  // a bit for each length that occurs
};

/// From the shorter of two lengths to the longer, samples; free of excess.
double Step(const Lengths& lengths);

/// Whether nothing strays anywhere near the middle between the two lengths.
bool IsClear(const Lengths& lengths);

constexpr bool Within(double value, double least, double most) { return value >= least && value <= most; }

}  // namespace keplo::robust
