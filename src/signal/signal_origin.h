#pragma once

#include <chrono>

namespace keplo {

/// Where and when a signal was on air. A line knows it where a device, or somebody else, has kept the signal,
/// however late the line is asked. No two places hear the same press.
struct SignalOrigin {
  int Place = 0;                               // which of other people's receivers; 0 for the line's own
  int Zone = 0;                                // 1 to 8; 0 for a place without one
  std::chrono::microseconds Begin{0}, End{0};  // on the clock of the machine
  bool IsPublic = false;  // everybody has been told already; telling it again would go round in circles
};

}  // namespace keplo
