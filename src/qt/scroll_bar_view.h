#pragma once

#include <QScrollBar>

#include "qt/model_link.h"
#include "ui/scroll_bar.h"

namespace keplo::qt {

/// A horizontal scroll bar for a model. Its own value counts from the left end, even if Min is above Max. The
/// mouse wheel only moves it while it has the focus.
class ScrollBarView : public QScrollBar {
 public:
  ScrollBarView(ui::ScrollBar& model, QWidget* parent);

 protected:
  void paintEvent(QPaintEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  void wheelEvent(QWheelEvent* event) override;

 private:
  void Redraw();
  int Direction() const { return model_.Max() < model_.Min() ? -1 : 1; }

  ui::ScrollBar& model_;
  ModelLink link_;
};

}  // namespace keplo::qt
