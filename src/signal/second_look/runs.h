#pragma once

#include <cstddef>
#include <string_view>
#include <vector>

namespace keplo::robust {

/// Runs of up to so many samples are taken for interference and belong to what surrounds them.
inline constexpr int kInterference = 2;

/// The runs of a capture: marks and spaces in turn, from the first mark to the last.
struct RunList {
  std::vector<int> Lengths;
  int Silence = 0;  // samples after the last mark; 0 if the capture ends in it
};

/// @param interferenceLimit runs of up to so many samples join what surrounds them
RunList ReadRuns(std::string_view samples, int interferenceLimit = kInterference);

/// About one base time, samples; up to two where the longer runs are the commoner by far.
/// @param runs marks and spaces in turn
double RoughUnit(const int* runs, std::size_t size);

/// What stands between two long spaces.
struct Piece {
  const int* First = nullptr;  // marks and spaces in turn, a mark at both ends
  std::size_t Size = 0;
  int After = 0;  // the space after, samples

  bool IsSingle() const { return Size == 1; }
};

/// Parts the runs at long spaces.
/// @return pieces that point into the runs
std::vector<Piece> SplitPieces(const RunList& runs);

}  // namespace keplo::robust
