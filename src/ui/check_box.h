#pragma once

#include <functional>

#include "ui/control.h"

namespace keplo::ui {

/// A check box. The click handler runs at once whenever the value really changes, from the user or from code,
/// after OnChanged.
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
