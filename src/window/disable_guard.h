#pragma once

#include "ui/control.h"

namespace keplo {

/// Disables a control during its lifetime.
class DisableGuard {
 public:
  explicit DisableGuard(ui::Control& control) : control_(control) { control_.SetEnabled(false); }
  ~DisableGuard() { control_.SetEnabled(true); }
  DisableGuard(const DisableGuard&) = delete;
  DisableGuard& operator=(const DisableGuard&) = delete;

 private:
  ui::Control& control_;
};

}  // namespace keplo
