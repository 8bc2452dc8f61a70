#pragma once

#include <QSocketNotifier>
#include <functional>

#include "program/stop_signals.h"

namespace keplo::host {

/// Blocks hangup signals, which would end the program, until a SignalNotifier can handle them. Other signals
/// still end it.
void HoldHangups();

/// Turns signals into events of the event loop, so that the host stops, or reads its files again, between two
/// ticks. A hangup means that it should read its files, unless the terminal was closed in which it was
/// started without nohup.
class SignalNotifier {
 public:
  /// @param reload runs for each hangup, even if it was blocked at first
  explicit SignalNotifier(std::function<void()> reload);

  /// @param stop runs for each stop signal from now on; replaces an earlier function
  void Watch(std::function<void()> stop) { stop_ = std::move(stop); }

 private:
  void Act(int number) const;

  const bool endsWithTerminal_;
  std::function<void()> reload_, stop_;
  StopSignals signals_;
  QSocketNotifier notifier_;
};

}  // namespace keplo::host
