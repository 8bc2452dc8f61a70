#pragma once

#include <functional>
#include <optional>

#include "ui/colour.h"

namespace keplo::ui {

/// What every control has besides its content: whether it can be used, whether it is seen, and its back
/// colour; none is the toolkit's own.
class Control {
 public:
  bool Enabled() const { return enabled_; }
  void SetEnabled(bool enabled) { Change(enabled_, enabled); }

  bool Visible() const { return visible_; }
  void SetVisible(bool visible) { Change(visible_, visible); }

  std::optional<Colour> BackColour() const { return backColour_; }
  void SetBackColour(std::optional<Colour> colour) { Change(backColour_, colour); }

  /// Runs after a change; a view redraws there.
  std::function<void()> OnChanged;

 protected:
  void Changed() const {
    if (OnChanged) OnChanged();
  }

  /// Takes a value over; runs OnChanged if it is another one.
  /// @return true if it was
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
