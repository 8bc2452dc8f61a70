#pragma once

#include <QPushButton>
#include <optional>

#include "qt/busy.h"
#include "qt/model_link.h"
#include "ui/button.h"

namespace keplo::qt {

/// A push button over its model, with less room around its caption than a dialog's buttons have. A click
/// that takes its time disables the button: the window is drawn then, and the program is busy until the
/// button can be used again.
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
