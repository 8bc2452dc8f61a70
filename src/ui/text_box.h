#pragma once

#include <functional>
#include <string>
#include <string_view>

namespace keplo::ui {

/// A line of text that the user can edit.
class TextBox {
 public:
  const std::string& Text() const { return text_; }
  void SetText(std::string_view text) {
    if (text == text_) return;
    text_ = text;
    if (OnChanged) OnChanged();
  }

  /// Runs after a change; a view redraws there.
  std::function<void()> OnChanged;

 private:
  std::string text_;
};

}  // namespace keplo::ui
