#pragma once

#include <QPushButton>
#include <QTimer>

#include "qt/model_link.h"
#include "ui/button.h"

namespace keplo::qt {

/// A push button over its model, with less room around its caption than a dialog's buttons have. A click
/// that takes its time disables the button: the window is drawn then, and the cursor tells that it is busy.
/// What is pressed on the button meanwhile waits in the event loop, and is dropped.
class ButtonView : public QPushButton {
 public:
  ButtonView(ui::Button& model, const QString& caption, QWidget* parent);

  QSize sizeHint() const override;
  QSize minimumSizeHint() const override { return sizeHint(); }

 protected:
  bool event(QEvent* event) override;

 private:
  void Redraw();
  void Click();
  void ShowWork(bool working);

  ui::Button& model_;
  bool inClick_ = false;
  bool working_ = false;
  bool hadFocus_ = false;
  QTimer dropping_;  // running while input that came during the work may still be waiting
  int turnsToDrop_ = 0;
  ModelLink link_;
};

}  // namespace keplo::qt
