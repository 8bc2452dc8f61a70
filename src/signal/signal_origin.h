#pragma once

#include <chrono>

namespace keplo {

/// Where and when a signal was on air that a line was told of by somebody who has heard it.
struct SignalOrigin {
  int Place = 0;                               // one for each receiver; no two of them hear the same press
  int Zone = 0;                                // 1 to 8; 0 for a place without one
  std::chrono::microseconds Begin{0}, End{0};  // on the clock of the machine
  bool IsPublic = false;  // it was told to everybody, and telling it again would go round and round
};

}  // namespace keplo
