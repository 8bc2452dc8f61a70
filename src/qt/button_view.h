#pragma once

#include <QPushButton>
#include <optional>

#include "qt/busy.h"
#include "qt/model_link.h"
#include "ui/button.h"

namespace keplo::qt {

/// A push button for a model, with less padding than the buttons of a dialog. If a click handler disables the
/// button because it takes some time, the window is repainted, and the program is busy until the button is
/// enabled again.
class ButtonView : public QPushButton {
 public:
  ButtonView(ui::Button& model, const QString& caption, QWidget* parent);

  QSize sizeHint() const override;
  QSize minimumSizeHint() const override { return sizeHint(); }

 private:
  void Redraw();
  void KeepFocusWhileDisabled();
  void Click();

  ui::Button& model_;
  bool inClick_ = false;
  bool hadFocus_ = false;
  std::optional<Busy> working_;
  ModelLink link_;
};

}  // namespace keplo::qt
