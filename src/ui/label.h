#pragma once

#include <string>
#include <string_view>

#include "ui/control.h"

namespace keplo::ui {

/// A text that the user cannot edit.
class Label : public Control {
 public:
  explicit Label(std::string_view text = {}) : text_(text) {}

  const std::string& Text() const { return text_; }
  void SetText(std::string_view text) { Change(text_, text); }

 private:
  std::string text_;
};

}  // namespace keplo::ui
