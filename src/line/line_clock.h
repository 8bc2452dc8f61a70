#pragma once

#include <chrono>

namespace keplo {

/// The time that a line plays against, and how it waits for it.
class LineClock {
 public:
  virtual ~LineClock() = default;
  virtual std::chrono::microseconds Now() = 0;
  virtual void WaitUntil(std::chrono::microseconds time) = 0;
};

/// Time that really passes.
class SteadyLineClock : public LineClock {
 public:
  std::chrono::microseconds Now() override;
  void WaitUntil(std::chrono::microseconds time) override;
};

}  // namespace keplo
