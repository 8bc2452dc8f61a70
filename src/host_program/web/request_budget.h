#pragma once

#include <algorithm>
#include <chrono>

namespace keplo::host {

/// Limits requests to a number per second, all of which may come at once.
class RequestBudget {
 public:
  explicit RequestBudget(double perSecond) : perSecond_(perSecond), left_(perSecond) {}

  /// @param now time of a monotonic clock
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
