#pragma once

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

namespace keplo::tests {

/// Another process that runs an action and then ends with 0, or with 1 if anything was thrown.
class ChildProcess {
 public:
  template <typename Action>
  explicit ChildProcess(Action action) : child_(fork()) {
    if (child_ != 0) return;
    try {
      action();
    } catch (...) {
      _exit(1);
    }
    _exit(0);
  }
  ChildProcess(const ChildProcess&) = delete;
  ChildProcess& operator=(const ChildProcess&) = delete;
  ~ChildProcess() { Join(); }

  /// @return exit code; -1 if there was no process or it was ended by a signal
  int Join() {
    if (child_ > 0 && waitpid(child_, &status_, 0) != child_) status_ = -1;
    if (child_ < 0) status_ = -1;
    child_ = 0;
    return WIFEXITED(status_) ? WEXITSTATUS(status_) : -1;
  }

 private:
  pid_t child_;
  int status_ = 0;
};

}  // namespace keplo::tests
