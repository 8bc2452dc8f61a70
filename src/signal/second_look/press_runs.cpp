#include "signal/second_look/press_runs.h"

namespace keplo::robust {

PressRuns FromFirstMark(RunSpan runs) {
  if (!runs.empty() && runs.front() == 0) runs = runs.subspan(2);
  if (runs.empty() || EndsInMark(runs)) return {runs, 0};
  return {runs.first(runs.size() - 1), runs.back()};
}

void SplitPieces(const PressRuns& runs, double unit, std::vector<Piece>& pieces) {
  pieces.clear();
  const RunSpan lengths = runs.Lengths;
  const double gap = kGapUnits * unit;
  std::size_t first = 0;
  for (std::size_t i = 1; i < lengths.size(); i += 2) {
    if (lengths[i] <= gap) continue;
    pieces.push_back({&lengths[first], i - first, lengths[i]});
    first = i + 1;
  }
  if (!lengths.empty()) pieces.push_back({&lengths[first], lengths.size() - first, runs.Silence});
}

}  // namespace keplo::robust
