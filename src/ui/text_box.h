#pragma once

#include <string>
#include <string_view>

#include "ui/control.h"

namespace keplo::ui {

/// A line of text that the user can edit.
class TextBox : public Control {
 public:
  const std::string& Text() const { return text_; }
  void SetText(std::string_view text) { Change(text_, text); }

 private:
  std::string text_;
};

}  // namespace keplo::ui
