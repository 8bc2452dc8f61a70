#pragma once

#include <string>
#include <utility>

#include "host/component_entry.h"

namespace keplo {

/// Log lines on their way to the host; a host without a log gets none.
class Log {
 public:
  explicit Log(std::function<void(LogLevel, const std::string&)> write) : write_(std::move(write)) {}

  void Write(LogLevel level, const std::string& text) const {
    if (write_ && !silent_) write_(level, text);
  }
  /// For a host that wants no more lines; may be called from within one.
  void Silence() { silent_ = true; }

 private:
  bool silent_ = false;
  std::function<void(LogLevel, const std::string&)> write_;
};

}  // namespace keplo
