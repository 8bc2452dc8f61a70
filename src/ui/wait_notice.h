#pragma once

#include <string_view>

#include "ui/window.h"

namespace keplo::ui {

/// Shows in a window, during its lifetime, what the program is busy with.
class WaitNotice {
 public:
  WaitNotice(const Window& window, std::string_view text) : window_(window) { window_.ShowWait(text); }
  ~WaitNotice() { window_.ShowWait({}); }
  WaitNotice(const WaitNotice&) = delete;
  WaitNotice& operator=(const WaitNotice&) = delete;

  void Show(std::string_view text) { window_.ShowWait(text); }

 private:
  const Window& window_;
};

}  // namespace keplo::ui
