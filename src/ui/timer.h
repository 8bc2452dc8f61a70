#pragma once

#include <functional>

namespace keplo::ui {

/// A periodic timer. Whoever runs the program calls Tick: an event loop, the loop of a command, or a test.
class Timer {
 public:
  explicit Timer(int intervalMs) : Interval(intervalMs) {}

  const int Interval;  // milliseconds

  bool Enabled() const { return enabled_; }
  void SetEnabled(bool enabled) {
    if (enabled == enabled_) return;
    enabled_ = enabled;
    if (OnEnabledChanged) OnEnabledChanged();
  }

  void Tick() {
    if (enabled_ && OnTimer) OnTimer();
  }

  std::function<void()> OnTimer;
  /// Runs after Enabled has changed, so that an event loop can start or stop its own timer.
  std::function<void()> OnEnabledChanged;

 private:
  bool enabled_ = false;
};

}  // namespace keplo::ui
