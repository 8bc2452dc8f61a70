#include "qt/scroll_bar_view.h"

#include <QKeyEvent>
#include <QPainter>
#include <QSignalBlocker>
#include <QWheelEvent>

#include "qt/control_look.h"

namespace keplo::qt {

ScrollBarView::ScrollBarView(ui::ScrollBar& model, QWidget* parent)
    : QScrollBar(Qt::Horizontal, parent), model_(model), link_(model.OnChanged, [this] { Redraw(); }) {
  setFocusPolicy(Qt::StrongFocus);
  setSingleStep(model.SmallChange);
  setPageStep(model.LargeChange);
  Redraw();
  connect(this, &QScrollBar::valueChanged, this, [this](int steps) {
    if (link_.Alive()) model_.SetValue(model_.Min() + Direction() * steps);
  });
}

void ScrollBarView::Redraw() {
  const QSignalBlocker ownChangesOnly(this);
  setRange(0, Direction() * (model_.Max() - model_.Min()));
  setValue(Direction() * (model_.Value() - model_.Min()));
  ShowState(*this, model_);
}

void ScrollBarView::paintEvent(QPaintEvent* event) {
  QScrollBar::paintEvent(event);
  if (!hasFocus()) return;
  // The toolkit's scroll bars look alike with and without the focus, and the keys would seem to do nothing.
  QPainter painter(this);
  painter.setPen(palette().color(QPalette::Highlight));
  painter.drawRect(rect().adjusted(0, 0, -1, -1));
}

void ScrollBarView::keyPressEvent(QKeyEvent* event) {
  // Qt reverses the arrow keys for vertical scroll bars, and for horizontal ones as well.
  if (event->key() == Qt::Key_Left) {
    triggerAction(SliderSingleStepSub);
  } else if (event->key() == Qt::Key_Right) {
    triggerAction(SliderSingleStepAdd);
  } else {
    QScrollBar::keyPressEvent(event);
  }
}

void ScrollBarView::wheelEvent(QWheelEvent* event) {
  event->setAccepted(hasFocus());
  if (hasFocus()) QScrollBar::wheelEvent(event);
}

}  // namespace keplo::qt
