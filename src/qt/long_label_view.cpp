#include "qt/long_label_view.h"

#include <QKeyEvent>
#include <QPainter>
#include <QStyleOption>

#include "qt/control_look.h"
#include "qt/text.h"

namespace keplo::qt {

LongLabelView::LongLabelView(ui::Label& model, const QString& tip, QWidget* parent)
    : QLineEdit(parent), model_(model), tip_(tip), link_(model.OnChanged, [this] { Redraw(); }) {
  setReadOnly(true);
  setFrame(false);
  Redraw();
}

void LongLabelView::Redraw() {
  // In labels, && stands for a single &.
  const QString shown = ShownText(model_.Text()).replace(QLatin1String("&&"), QLatin1String("&"));
  if (shown != text()) {
    setText(shown);
    setCursorPosition(0);  // shows the beginning
  }
  // Only rich-text tips wrap.
  setToolTip(shown.isEmpty()
                 ? tip_
                 : QStringLiteral("<p>%1</p><p>%2</p>").arg(tip_.toHtmlEscaped(), shown.toHtmlEscaped()));
  setPalette(PaletteOf(model_, QPalette::Base, QPalette::Text));
  ShowState(*this, model_);
}

void LongLabelView::initStyleOption(QStyleOptionFrame* option) const {
  QLineEdit::initStyleOption(option);
  const bool coloured = link_.Alive() && model_.BackColour();
  if (!coloured) option->palette.setBrush(QPalette::Base, option->palette.window());
}

void LongLabelView::paintEvent(QPaintEvent* event) {
  QLineEdit::paintEvent(event);
  QPainter painter(this);
  painter.setPen(palette().color(hasFocus() ? QPalette::Highlight : QPalette::WindowText));
  painter.drawRect(rect().adjusted(0, 0, -1, -1));
}

bool LongLabelView::event(QEvent* event) {
  // Otherwise Ctrl+X, which cannot cut anything here, would exit the program.
  if (event->type() == QEvent::ShortcutOverride &&
      dynamic_cast<QKeyEvent&>(*event).matches(QKeySequence::Cut)) {
    event->accept();
    return true;
  }
  return QLineEdit::event(event);
}

}  // namespace keplo::qt
