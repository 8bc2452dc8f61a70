#pragma once

#include "ui/control.h"

namespace keplo {

/// Keeps a control from being used as long as it lives.
class WhileDisabled {
 public:
  explicit WhileDisabled(ui::Control& control) : control_(control) { control_.SetEnabled(false); }
  ~WhileDisabled() { control_.SetEnabled(true); }
  WhileDisabled(const WhileDisabled&) = delete;
  WhileDisabled& operator=(const WhileDisabled&) = delete;

 private:
  ui::Control& control_;
};

}  // namespace keplo
