#pragma once

#include <csignal>

namespace keplo {

/// Holds back the signals that end a program as long as one lives, so that no light stays on: whoever sends
/// looks whether one is pending, and ends the signal in order.
class HeldSignals {
 public:
  HeldSignals();
  ~HeldSignals();
  HeldSignals(const HeldSignals&) = delete;
  HeldSignals& operator=(const HeldSignals&) = delete;

  bool Pending() const;

 private:
  sigset_t held_{};
  sigset_t before_{};
};

}  // namespace keplo
