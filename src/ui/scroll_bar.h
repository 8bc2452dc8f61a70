#pragma once

#include <algorithm>
#include <functional>

#include "ui/control.h"

namespace keplo::ui {

/// A scroll bar. Min is the value at its left or upper end and may lie above Max: the value then falls
/// towards the other end. The change handler runs at once whenever the value really changes, from the user or
/// from code, after OnChanged.
class ScrollBar : public Control {
 public:
  int SmallChange = 1, LargeChange = 1;  // steps of the arrows and of the track

  int Min() const { return min_; }
  int Max() const { return max_; }
  int Value() const { return value_; }

  /// Moves the thumb; a value outside is drawn to the nearer end.
  void SetValue(int value) { Set(min_, max_, value); }

  /// Takes new ends and a value in one step, so that no handler meets the old value between new ends.
  void Set(int min, int max, int value) {
    const bool otherEnds = min != min_ || max != max_;
    min_ = min;
    max_ = max;
    const int within = std::clamp(value, std::min(min, max), std::max(min, max));
    const bool moved = Change(value_, within);
    if (otherEnds && !moved) Changed();
    if (moved && OnChange) OnChange();
  }

  std::function<void()> OnChange;

 private:
  int min_ = 0, max_ = 0, value_ = 0;
};

}  // namespace keplo::ui
