#pragma once

#include <csignal>

namespace keplo {

/// Holds back the signals that end a program as long as one lives, so that no light stays on and every port
/// is left as it was found: whoever waits or sends looks whether one is pending, and comes to an end in
/// order. The signal does its work when the last one is gone.
class HeldSignals {
 public:
  HeldSignals();
  ~HeldSignals();
  HeldSignals(const HeldSignals&) = delete;
  HeldSignals& operator=(const HeldSignals&) = delete;

  /// Whether a signal that is held back, by anyone, has come.
  static bool Pending();
  /// Takes what has come, so that it ends nothing.
  void Take() const;

 private:
  sigset_t held_{};
  sigset_t before_{};
};

}  // namespace keplo
