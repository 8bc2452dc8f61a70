#pragma once

#include <functional>

namespace keplo::ui {

/// A check box. The click handler runs at once whenever the value really changes, from the user or from code.
class CheckBox {
 public:
  bool Checked() const { return checked_; }
  void SetChecked(bool checked) {
    if (checked == checked_) return;
    checked_ = checked;
    if (OnChanged) OnChanged();
    if (OnClick) OnClick();
  }

  std::function<void()> OnClick;
  /// Runs after a change, ahead of the click handler; a view redraws there.
  std::function<void()> OnChanged;

 private:
  bool checked_ = false;
};

}  // namespace keplo::ui
