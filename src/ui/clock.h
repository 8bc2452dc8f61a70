#pragma once

#include <chrono>
#include <string>

namespace keplo::ui {

/// The current time; tests supply their own.
class Clock {
 public:
  virtual ~Clock() = default;
  virtual std::chrono::system_clock::time_point Now() const = 0;
};

class SystemClock : public Clock {
 public:
  std::chrono::system_clock::time_point Now() const override { return std::chrono::system_clock::now(); }
};

/// A local time in the format of error records: "07-Nov-2002 16:31:11". Month names are English in every
/// locale.
std::string RecordDate(std::chrono::system_clock::time_point when);

}  // namespace keplo::ui
