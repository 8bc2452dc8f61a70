#pragma once

#include <QSocketNotifier>
#include <functional>
#include <optional>
#include <string_view>

#include "disk/descriptor.h"

namespace keplo::host {

/// What a program and all that it starts write, read from the event loop. Unlike the pipe of a QProcess it
/// stays open for those who go on writing after the program itself has ended.
class OutputPipe {
 public:
  /// Where the system gives no more pipes there is no output; it gives no more processes then either.
  /// @param end runs when a read finds that nobody writes any more
  OutputPipe(std::function<void(std::string_view)> take, std::function<void()> end);

  /// For the child between fork and exec: makes the pipe its standard output and error.
  void BecomeOutput() const;
  /// For the parent, once the child is there: the output ends when nobody writes any more.
  void CloseWriteEnd() { writeEnd_.reset(); }
  /// Reads what is there already; of somebody who never stops writing, no more than a pipe holds.
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
