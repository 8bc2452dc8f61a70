#pragma once

#include <functional>
#include <string>
#include <string_view>

namespace keplo::ui {

/// What every window and dialog model has: a title, whether it is on screen, and its way off it.
class Window {
 public:
  virtual ~Window() = default;

  const std::string& Title() const { return title_; }
  void SetTitle(const std::string& title) {
    title_ = title;
    if (OnTitleChanged) OnTitleChanged();
  }

  /// Takes the window off the screen; a modal showing of it ends.
  void Hide() {
    if (OnHide) OnHide();
  }

  /// Tells the user what the program is busy with and how long at most; an empty text when it is over.
  void ShowWait(std::string_view text) const {
    if (OnWait) OnWait(text);
  }

  std::function<void()> OnTitleChanged;
  /// A view paints the text, and the cursor of a busy program, before it returns.
  std::function<void(std::string_view text)> OnWait;
  std::function<void()> OnHide;

 private:
  std::string title_;
};

}  // namespace keplo::ui
