#pragma once

#include <chrono>
#include <string>

namespace keplo::ui {

/// What time it is; tests answer with a time of their own.
class Clock {
 public:
  virtual ~Clock() = default;
  virtual std::chrono::system_clock::time_point Now() const = 0;
};

class SystemClock : public Clock {
 public:
  std::chrono::system_clock::time_point Now() const override { return std::chrono::system_clock::now(); }
};

/// A point of time as error records carry it, in local time: "07-Nov-2002 16:31:11". Month names are
/// English whatever the locale, so that records of two machines compare.
std::string RecordDate(std::chrono::system_clock::time_point when);

}  // namespace keplo::ui
