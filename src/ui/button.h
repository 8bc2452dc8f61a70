#pragma once

#include <functional>

#include "ui/control.h"

namespace keplo::ui {

/// A push button. Clicking a disabled one does nothing.
class Button : public Control {
 public:
  void Click() const {
    if (Enabled() && OnClick) OnClick();
  }

  std::function<void()> OnClick;
};

}  // namespace keplo::ui
