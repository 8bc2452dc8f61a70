#pragma once

#include <QWidget>

namespace keplo::qt {

/// The status panel's picture: a remote control that sends. It tells nothing.
class Ornament : public QWidget {
 public:
  using QWidget::QWidget;

 protected:
  void paintEvent(QPaintEvent* event) override;
};

}  // namespace keplo::qt
