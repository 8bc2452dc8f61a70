#pragma once

#include <algorithm>
#include <functional>

#include "ui/control.h"

namespace keplo::ui {

/// A scroll bar. Min is the value at its left or upper end, and may be greater than Max. OnChange runs, after
/// OnChanged, whenever the value changes, whether by the user or by code.
class ScrollBar : public Control {
 public:
  int SmallChange = 1, LargeChange = 1;  // steps of the arrows and of the track

  int Min() const { return min_; }
  int Max() const { return max_; }
  int Value() const { return value_; }

  /// Moves the thumb; the value is clamped.
  void SetValue(int value) { Set(min_, max_, value); }

  /// Sets ends and value together, so that no handler sees the old value with the new ends.
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
