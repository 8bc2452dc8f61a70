#include "signal/second_look/body.h"

#include <algorithm>
#include <cstdlib>
#include <limits>

namespace keplo::robust {

bool Leader::IsLike(const Leader& other) const {
  constexpr double kPart = 0.2, kLeast = 6;  // of its length, and samples
  const auto near = [=](int a, int b) { return std::max(kPart * std::max(a, b), kLeast); };
  const double longer = Mark - other.Mark, slack = near(Mark, other.Mark);
  return longer <= slack + other.MayLack && -longer <= slack + MayLack &&
         std::abs(Space - other.Space) <= near(Space, other.Space);
}

RoughLengths BodyReader::Rough(const PressRuns& runs) {
  CountRuns(runs.Lengths, RoughLengths::kLongestTold);
  return {UnitOf(runs.Lengths.size()), std::max(marks_.Longest(), spaces_.Longest())};
}

void BodyReader::CountRuns(RunSpan runs, int longest) {
  marks_.Clear();
  spaces_.Clear();
  if (runs.empty()) return;
  marks_.CountEveryOther(runs, longest);
  spaces_.CountEveryOther(runs.subspan(1), longest);
}

Body BodyReader::Read(const Piece& piece, std::size_t skipped) {
  const RunSpan runs = RunSpan(piece.First, piece.Size).subspan(skipped);
  CountRuns(runs, std::numeric_limits<int>::max());
  const double unit = UnitOf(runs.size());
  return {runs.data(), runs.size(), unit, sampleTime_, marks_.Groups(unit), spaces_.Groups(unit)};
}

double BodyReader::UnitOf(std::size_t runs) const {
  const std::size_t spaces = runs / 2;
  // A longer run is told apart by no base time.
  const int mark = std::min(marks_.LowerQuartile(runs - spaces), RoughLengths::kLongestTold);
  const int space = std::min(spaces_.LowerQuartile(spaces), RoughLengths::kLongestTold);
  return (mark + space) / 2.0;
}

}  // namespace keplo::robust
