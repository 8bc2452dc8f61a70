#pragma once

#include <algorithm>
#include <chrono>

namespace keplo::host {

/// How many requests may be answered: a number a second, and as many at once.
class RequestBudget {
 public:
  explicit RequestBudget(double perSecond) : perSecond_(perSecond), left_(perSecond) {}

  /// @param now on any clock that does not go back
  /// @return false if the budget is used up
  bool Take(std::chrono::duration<double> now) {
    left_ = std::min(perSecond_, left_ + (now - last_).count() * perSecond_);
    last_ = now;
    if (left_ < 1) return false;
    left_ -= 1;
    return true;
  }

 private:
  double perSecond_;
  double left_;
  std::chrono::duration<double> last_{0};
};

}  // namespace keplo::host
