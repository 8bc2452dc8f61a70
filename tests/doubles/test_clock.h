#pragma once

#include <algorithm>
#include <chrono>

#include "line/line_clock.h"

namespace keplo::tests {

/// A clock that only advances when somebody waits.
class TestClock : public LineClock {
 public:
  std::chrono::microseconds Time{0};

  std::chrono::microseconds Now() override { return Time; }
  void WaitUntil(std::chrono::microseconds time) override { Time = std::max(Time, time); }
};

}  // namespace keplo::tests
