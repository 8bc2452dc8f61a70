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
  explicit OutputPipe(std::function<void(std::string_view)> take);

  /// For the child between fork and exec: makes the pipe its standard output and error.
  void BecomeOutput() const;
  /// For the parent, once the child is there: the output ends when nobody writes any more.
  void CloseWriteEnd() { writeEnd_.reset(); }
  /// Reads what is there already.
  void Drain() {
    while (Read()) {
    }
  }

 private:
  /// @return whether there may be more
  bool Read();

  std::function<void(std::string_view)> take_;
  std::optional<Descriptor> readEnd_, writeEnd_;
  std::optional<QSocketNotifier> notifier_;
};

}  // namespace keplo::host
