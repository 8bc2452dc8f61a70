#pragma once

#include <QSocketNotifier>
#include <functional>

#include "program/stop_signals.h"

namespace keplo::host {

/// Stop signals as an event of the loop, so that the host stops between two ticks.
class StopNotifier {
 public:
  StopNotifier();

  /// @param stop runs for each signal from now on, in place of an earlier one
  void Watch(std::function<void()> stop) { stop_ = std::move(stop); }

 private:
  StopSignals signals_;
  QSocketNotifier notifier_;
  std::function<void()> stop_;
};

}  // namespace keplo::host
