#include "signal/second_look/length_fit.h"

#include <algorithm>
#include <cmath>

#include "signal/first_analysis.h"
#include "signal/second_look/line_shapes.h"

namespace keplo::robust {

namespace {

/// 1 for a mark, which is longer by the excess, -1 for a space.
double SignOf(std::size_t run) { return run % 2 == 0 ? 1 : -1; }

int UnitsOfRun(const Frame& frame, std::size_t run) {
  return UnitsOf(frame.First[run], SignOf(run) * frame.Excess, frame.Unit);
}

/// The mean of the group that a run belongs to.
double MeanOf(const Lengths& lengths, int run) {
  return lengths.IsLong(run) ? lengths.Long().Mean : lengths.Short().Mean;
}

}  // namespace

/// Base time and excess are fitted by least squares, which a single odd run moves less than the mean of its
/// few equals. Where lengths are not whole base times, the means are all there is.
LengthFit::LengthFit(const Frame& frame)
    : frame_(frame),
      whole_(frame.Shape->HasWholeUnits && (frame.StepUnits == 0 || Within(frame.StepUnits, 0.8, 1.2))),
      unit_(frame.Unit),
      excess_(frame.Excess) {
  const auto runs = static_cast<double>(frame.Runs);
  if (whole_) {
    double units = 0, unitSquares = 0, lengths = 0, products = 0;
    for (std::size_t i = 0; i < frame.Runs; ++i) {
      const double number = UnitsOfRun(frame, i), length = frame.First[i];
      units += SignOf(i) * number;
      unitSquares += number * number;
      lengths += SignOf(i) * length;
      products += number * length;
    }
    const double scale = runs * unitSquares - units * units;
    if (scale > 0) {
      unit_ = (runs * products - units * lengths) / scale;
      excess_ = (unitSquares * lengths - units * products) / scale;
    }
  }
  // The closing mark of pulse distance is no part of a digit.
  const std::size_t telling = frame.Kind() == kNec ? frame.Runs - 1 : frame.Runs;
  double squares = 0;
  for (std::size_t i = 0; i < telling; ++i) {
    const double off = Off(i);
    worst_ = std::max(worst_, off);
    squares += off * off;
  }
  constexpr double kKnown = 3;  // base time, excess, and the run in question
  spread_ = std::sqrt(std::max(squares - worst_ * worst_, 0.0) / std::max(runs - kKnown, 1.0));
  // The slack is what the grid of samples and one odd edge leave, and how much further off than usual the
  // worst of 30 to 100 edges is. At most it is what 25 us of jitter leave, which the worst remotes have.
  constexpr double kLeastSlack = 1.5, kLeastSlackUs = 80, kSpreads = 3.2, kMostSlackUs = 225;
  const double samples = frame.Unit / frame.UnitUs;  // in a microsecond
  const double least = std::max(kLeastSlack, kLeastSlackUs * samples);
  slack_ = std::min(least + kSpreads * spread_, std::max(2 * least, kMostSlackUs * samples));
}

double LengthFit::Off(std::size_t run) const {
  const int length = frame_.First[run];
  if (!whole_) return std::abs(length - MeanOf(run % 2 == 0 ? frame_.Marks : frame_.Spaces, length));
  return std::abs(length - UnitsOfRun(frame_, run) * unit_ - SignOf(run) * excess_);
}

bool LengthFit::IsUsual(std::size_t run) const {
  constexpr double kSpreads = 2, kGrid = 1;  // of the others, and samples
  return Off(run) <= std::max(kSpreads * spread_, kGrid);
}

}  // namespace keplo::robust
