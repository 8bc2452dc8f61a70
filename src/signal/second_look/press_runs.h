#pragma once

#include <cstddef>
#include <vector>

#include "signal/runs.h"

namespace keplo::robust {

/// The runs of a press: marks and spaces in turn, from the first mark to the last.
struct PressRuns {
  RunSpan Lengths;
  int Silence = 0;  // samples after the last mark; 0 if the capture ends in it
};

PressRuns FromFirstMark(RunSpan runs);

/// The runs between two long spaces.
struct Piece {
  const int* First = nullptr;  // marks and spaces in turn, a mark at both ends
  std::size_t Size = 0;
  int After = 0;  // the space after, samples

  bool IsSingle() const { return Size == 1; }
};

/// Longer spaces separate frames, base times; inside a frame there are spaces of four.
inline constexpr double kGapUnits = 5.5;

/// Splits the runs at long spaces.
/// @param unit of the press, as RoughLengths has it
/// @param pieces replaced; point into the runs
void SplitPieces(const PressRuns& runs, double unit, std::vector<Piece>& pieces);

}  // namespace keplo::robust
