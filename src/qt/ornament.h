#pragma once

#include <QWidget>

namespace keplo::qt {

/// The decorative picture of the status panel: a remote control that sends.
class Ornament : public QWidget {
 public:
  using QWidget::QWidget;

 protected:
  void paintEvent(QPaintEvent* event) override;
};

}  // namespace keplo::qt
