#pragma once

#include <functional>
#include <string>
#include <vector>

namespace keplo::ui {

/// A menu entry; with the caption "-" it is a separator.
struct MenuItem {
  std::string Name;
  std::string Caption;
  std::function<void()> OnClick;
};

/// A pop-up menu, which a view shows when its owner calls PopUp.
struct PopupMenu {
  std::vector<MenuItem> Items;
  std::function<void()> OnPopUp;

  void PopUp() const {
    if (OnPopUp) OnPopUp();
  }
};

}  // namespace keplo::ui
