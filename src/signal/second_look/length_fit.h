#pragma once

#include <cstddef>

#include "signal/second_look/frame.h"

namespace keplo::robust {

/// How far each run of a frame is from the length that all runs together suggest. A run that was stretched or
/// shortened into another digit is usually further off than the others.
class LengthFit {
 public:
  explicit LengthFit(const Frame& frame);

  /// Whether no run is further off than the others would suggest.
  bool IsClose() const { return worst_ <= slack_; }
  /// Whether a run is no further off than most.
  bool IsUsual(std::size_t run) const;

 private:
  double Off(std::size_t run) const;

  const Frame& frame_;
  bool whole_;            // all lengths are whole base times
  double unit_, excess_;  // samples
  double spread_ = 0;     // usual distance of a run, the worst left out
  double worst_ = 0, slack_ = 0;
};

}  // namespace keplo::robust
