#pragma once

#include <csignal>
#include <optional>

namespace keplo {

/// Holds back the signals that end or stop a program while an object lives, so that no light stays on and
/// every port is left as it was found: code that waits or sends checks whether a signal that ends the program
/// is pending, and finishes what it has begun. The signal takes effect when the last object is gone. One
/// thread at a time holds back what stops the program, on behalf of all threads.
class HeldSignals {
 public:
  enum class Kinds { Ending, EndingAndStopping };

  /// @param kinds those that stop a program are held for moments only: a terminal should be obeyed at once
  explicit HeldSignals(Kinds kinds = Kinds::Ending);
  ~HeldSignals();
  HeldSignals(const HeldSignals&) = delete;
  HeldSignals& operator=(const HeldSignals&) = delete;

  /// Whether a signal that is held back, by anyone, has come and will end the program: one that is ignored,
  /// as under nohup, does not, nor does SIGHUP where it asks a host to read its files again.
  static bool Pending();
  /// Takes what has come, so that it ends nothing.
  void Take() const;

 private:
  sigset_t held_{};
  sigset_t before_{};
  std::optional<struct sigaction> stop_;  // what was done on a stop, where it is held back
};

}  // namespace keplo
