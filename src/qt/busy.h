#pragma once

namespace keplo::qt {

/// During its lifetime, shows the busy cursor and drops all keyboard and mouse input of the program, which
/// would otherwise reach the windows later, when the user no longer expects it.
class Busy {
 public:
  Busy();
  ~Busy();
  Busy(const Busy&) = delete;
  Busy& operator=(const Busy&) = delete;
};

/// Suspends Busy during its lifetime, so that the user can answer a question.
class BusyPause {
 public:
  BusyPause();
  ~BusyPause();
  BusyPause(const BusyPause&) = delete;
  BusyPause& operator=(const BusyPause&) = delete;

 private:
  int busyBefore_;
};

}  // namespace keplo::qt
