#pragma once

#include <functional>

namespace keplo::ui {

/// A periodic timer as its owner sees it. Whoever runs the program watches it and calls Tick: an event
/// loop, the command line's own loop, or a test that needs no real time.
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
  /// Runs after Enabled has changed; an event loop starts or stops its own timer there.
  std::function<void()> OnEnabledChanged;

 private:
  bool enabled_ = false;
};

}  // namespace keplo::ui
