#pragma once

#include <QSocketNotifier>
#include <functional>

#include "program/stop_signals.h"

namespace keplo::host {

/// Holds a hangup signal back until a SignalNotifier can act on it. For the first instant of a program, which
/// such a signal would end; the signals that stop a program end it at once until then.
void HoldHangups();

/// Signals as events of the loop, so that the host stops or reads its files again between two ticks. A hangup
/// asks for the files, unless it tells that the terminal was closed in which the host was started without
/// nohup.
class SignalNotifier {
 public:
  /// @param reload runs for each hangup, one that was held back too
  explicit SignalNotifier(std::function<void()> reload);

  /// @param stop runs for each stop signal from now on, in place of an earlier one
  void Watch(std::function<void()> stop) { stop_ = std::move(stop); }

 private:
  void Act(int number) const;

  const bool endsWithTerminal_;
  std::function<void()> reload_, stop_;
  StopSignals signals_;
  QSocketNotifier notifier_;
};

}  // namespace keplo::host
