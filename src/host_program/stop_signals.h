#pragma once

#include <QSocketNotifier>
#include <functional>
#include <memory>

namespace keplo::host {

/// SIGINT and SIGTERM as an event of the loop, so that the host stops between two ticks. Create it ahead of
/// everything that starts threads.
class StopSignals {
 public:
  StopSignals();
  ~StopSignals();
  StopSignals(const StopSignals&) = delete;
  StopSignals& operator=(const StopSignals&) = delete;

  /// @param stop runs for each signal from now on, in place of an earlier one
  void Watch(std::function<void()> stop);

 private:
  int descriptor_;
  std::unique_ptr<QSocketNotifier> notifier_;
};

}  // namespace keplo::host
