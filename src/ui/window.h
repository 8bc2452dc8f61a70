#pragma once

#include <functional>
#include <string>
#include <string_view>

namespace keplo::ui {

/// What the models of windows and dialogs have in common.
class Window {
 public:
  virtual ~Window() = default;

  const std::string& Title() const { return title_; }
  void SetTitle(const std::string& title) {
    title_ = title;
    if (OnTitleChanged) OnTitleChanged();
  }

  /// Hides the window, and ends it if it is modal.
  void Hide() {
    if (OnHide) OnHide();
  }

  /// Shows what the program is busy with, and how long at most; an empty text ends the wait.
  void ShowWait(std::string_view text) const {
    if (OnWait) OnWait(text);
  }

  std::function<void()> OnTitleChanged;
  /// A view paints the text and shows the busy cursor before it returns.
  std::function<void(std::string_view text)> OnWait;
  std::function<void()> OnHide;

 private:
  std::string title_;
};

}  // namespace keplo::ui
