#pragma once

#include <functional>

namespace keplo::ui {

/// An entry of a menu bar.
class MenuEntry {
 public:
  bool Visible() const { return visible_; }
  void SetVisible(bool visible) { Change(visible_, visible); }

  bool Enabled() const { return enabled_; }
  void SetEnabled(bool enabled) { Change(enabled_, enabled); }

  bool Checked() const { return checked_; }
  void SetChecked(bool checked) { Change(checked_, checked); }

  void Click() const {
    if (OnClick) OnClick();
  }

  std::function<void()> OnClick;
  /// Runs after a change, so that a view can redraw.
  std::function<void()> OnChanged;

 private:
  void Change(bool& value, bool to) {
    if (value == to) return;
    value = to;
    if (OnChanged) OnChanged();
  }

  bool visible_ = true;
  bool enabled_ = true;
  bool checked_ = false;
};

}  // namespace keplo::ui
