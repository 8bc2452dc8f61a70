#pragma once

#include <QSocketNotifier>
#include <functional>
#include <optional>
#include <string_view>

#include "disk/descriptor.h"

namespace keplo::host {

/// Reads the output of a program and its child processes from the event loop. Unlike the pipe of a QProcess,
/// it stays open for processes that keep writing after the program has ended.
class OutputPipe {
 public:
  /// If the system has no more pipes, there is no output, but then it cannot start the program either.
  /// @param end runs when all writers have closed the pipe
  OutputPipe(std::function<void(std::string_view)> take, std::function<void()> end);

  /// Called in the child between fork and exec: makes the pipe its standard output and error.
  void BecomeOutput() const;
  /// Called in the parent after the fork, so that the pipe ends when all writers have closed it.
  void CloseWriteEnd() { writeEnd_.reset(); }
  /// Reads what has been written so far, but no more than a pipe can hold.
  void Drain();

 private:
  /// @return whether there may be more
  bool Read();

  std::function<void(std::string_view)> take_;
  std::function<void()> end_;
  std::optional<Descriptor> readEnd_, writeEnd_;
  std::optional<QSocketNotifier> notifier_;
};

}  // namespace keplo::host
