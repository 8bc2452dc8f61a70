#pragma once

#include <functional>
#include <optional>

#include "ui/colour.h"

namespace keplo::ui {

/// What all controls have in common.
class Control {
 public:
  bool Enabled() const { return enabled_; }
  void SetEnabled(bool enabled) { Change(enabled_, enabled); }

  bool Visible() const { return visible_; }
  void SetVisible(bool visible) { Change(visible_, visible); }

  /// None for the default colour.
  std::optional<Colour> BackColour() const { return backColour_; }
  void SetBackColour(std::optional<Colour> colour) { Change(backColour_, colour); }

  /// Runs after a change, so that a view can redraw.
  std::function<void()> OnChanged;

 protected:
  void Changed() const {
    if (OnChanged) OnChanged();
  }

  /// Assigns a value, and runs OnChanged if it differs.
  /// @return whether it differed
  template <typename Value, typename NewValue>
  bool Change(Value& value, const NewValue& to) {
    if (value == to) return false;
    value = to;
    Changed();
    return true;
  }

 private:
  bool enabled_ = true;
  bool visible_ = true;
  std::optional<Colour> backColour_;
};

}  // namespace keplo::ui
