#pragma once

#include <functional>

#include "ui/control.h"

namespace keplo::ui {

/// A check box. OnClick runs, after OnChanged, whenever the value changes, whether by the user or by code.
class CheckBox : public Control {
 public:
  bool Checked() const { return checked_; }
  void SetChecked(bool checked) {
    if (Change(checked_, checked) && OnClick) OnClick();
  }

  std::function<void()> OnClick;

 private:
  bool checked_ = false;
};

}  // namespace keplo::ui
