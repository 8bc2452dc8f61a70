#pragma once

#include <QScrollBar>

#include "qt/model_link.h"
#include "ui/scroll_bar.h"

namespace keplo::qt {

/// A horizontal scroll bar over its model. It counts from the left end of the model, whichever way that runs.
/// The mouse wheel moves it only while it has the focus.
class ScrollBarView : public QScrollBar {
 public:
  ScrollBarView(ui::ScrollBar& model, QWidget* parent);

 protected:
  void keyPressEvent(QKeyEvent* event) override;
  void wheelEvent(QWheelEvent* event) override;

 private:
  void Redraw();
  int Direction() const { return model_.Max() < model_.Min() ? -1 : 1; }

  ui::ScrollBar& model_;
  ModelLink link_;
};

}  // namespace keplo::qt
