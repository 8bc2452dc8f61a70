#pragma once

#include <string>
#include <utility>

#include "host/component_entry.h"

namespace keplo {

/// Passes log lines to the host, if it has a log.
class Log {
 public:
  explicit Log(std::function<void(LogLevel, const std::string&)> write) : write_(std::move(write)) {}

  void Write(LogLevel level, const std::string& text) const {
    if (write_ && !silent_) write_(level, text);
  }
  /// Drops all further lines. May be called while a line is being written.
  void Silence() { silent_ = true; }

 private:
  bool silent_ = false;
  std::function<void(LogLevel, const std::string&)> write_;
};

}  // namespace keplo
