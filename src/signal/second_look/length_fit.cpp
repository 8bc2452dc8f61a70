#include "signal/second_look/length_fit.h"

#include <algorithm>
#include <cmath>

#include "signal/second_look/line_shapes.h"

namespace keplo::robust {

namespace {

/// 1 for a mark, which is longer by the excess, -1 for a space.
double SignOf(std::size_t run) { return run % 2 == 0 ? 1 : -1; }

int UnitsOfRun(const Frame& frame, std::size_t run) {
  return UnitsOf(frame.First[run], SignOf(run) * frame.Excess, frame.Unit);
}

/// Base time and excess that leave the least squares; a run that strays moves them less than a mean of few.
struct FittedLengths {
  double Unit = 0, Excess = 0;  // samples
};

FittedLengths FitOf(const Frame& frame) {
  double units = 0, squares = 0, lengths = 0, products = 0;
  for (std::size_t i = 0; i < frame.Runs; ++i) {
    const double number = UnitsOfRun(frame, i), length = frame.First[i];
    units += SignOf(i) * number;
    squares += number * number;
    lengths += SignOf(i) * length;
    products += number * length;
  }
  const auto runs = static_cast<double>(frame.Runs);
  const double scale = runs * squares - units * units;
  if (scale == 0) return {frame.Unit, frame.Excess};
  return {(runs * products - units * lengths) / scale, (squares * lengths - units * products) / scale};
}

}  // namespace

bool LiesInItsLengths(const Frame& frame) {
  // What the grid of samples and one odd edge leave, and how much further than usual the worst of some 30
  // edges is: with 25 us of jitter, as the worst remotes have, none of 400,000 made frames is refused.
  constexpr double kLeastSlack = 1.5, kLeastSlackUs = 80, kSpreads = 3.2;
  const FittedLengths fit = FitOf(frame);
  double worst = 0, squares = 0;
  for (std::size_t i = 0; i < frame.Runs; ++i) {
    const double off = frame.First[i] - UnitsOfRun(frame, i) * fit.Unit - SignOf(i) * fit.Excess;
    worst = std::max(worst, std::abs(off));
    squares += off * off;
  }
  constexpr double kKnown = 3;  // base time, excess, and the run that is asked about
  const double others = std::max(squares - worst * worst, 0.0) / (static_cast<double>(frame.Runs) - kKnown);
  const double samples = frame.Unit / frame.UnitUs;  // in a microsecond
  return worst <= std::max(kLeastSlack, kLeastSlackUs * samples) + kSpreads * std::sqrt(others);
}

}  // namespace keplo::robust
