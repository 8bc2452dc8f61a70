#include "line/line_clock.h"

#include <thread>

namespace keplo {

std::chrono::microseconds SteadyLineClock::Now() {
  return std::chrono::duration_cast<std::chrono::microseconds>(
      std::chrono::steady_clock::now().time_since_epoch());
}

void SteadyLineClock::WaitUntil(std::chrono::microseconds time) {
  std::this_thread::sleep_until(std::chrono::steady_clock::time_point(time));
}

}  // namespace keplo
