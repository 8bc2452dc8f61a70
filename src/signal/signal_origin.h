#pragma once

#include <chrono>

namespace keplo {

/// Where and when a signal was on air, by a line that knows it however late it is asked: a device or somebody
/// else has kept the signal for it.
struct SignalOrigin {
  int Place = 0;  // of somebody else's receiver, of whom no two hear the same press; 0 for the line's own
  int Zone = 0;   // 1 to 8; 0 for a place without one
  std::chrono::microseconds Begin{0}, End{0};  // on the clock of the machine
  bool IsPublic = false;  // it was told to everybody, and telling it again would go round and round
};

}  // namespace keplo
