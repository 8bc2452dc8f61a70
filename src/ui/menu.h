#pragma once

#include <functional>
#include <string>
#include <vector>

namespace keplo::ui {

/// One entry of a menu; the caption "-" makes a separator.
struct MenuItem {
  std::string Name;
  std::string Caption;
  std::function<void()> OnClick;
};

/// A menu that is shown only as a pop-up. Its owner calls PopUp; a view shows it at the mouse position.
struct PopupMenu {
  std::vector<MenuItem> Items;
  std::function<void()> OnPopUp;

  void PopUp() const {
    if (OnPopUp) OnPopUp();
  }
};

}  // namespace keplo::ui
