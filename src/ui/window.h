#pragma once

#include <functional>
#include <string>

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

  std::function<void()> OnTitleChanged;
  std::function<void()> OnHide;

 private:
  std::string title_;
};

}  // namespace keplo::ui
