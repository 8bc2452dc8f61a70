#include "qt/long_label_view.h"

#include <QKeyEvent>

#include "qt/control_look.h"
#include "qt/text.h"

namespace keplo::qt {

LongLabelView::LongLabelView(ui::Label& model, const QString& tip, QWidget* parent)
    : QLineEdit(parent), model_(model), tip_(tip), link_(model.OnChanged, [this] { Redraw(); }) {
  setReadOnly(true);
  Redraw();
}

void LongLabelView::Redraw() {
  // Labels mark access keys with &; a doubled one stands for itself.
  const QString shown = ShownText(model_.Text()).replace(QLatin1String("&&"), QLatin1String("&"));
  if (shown != text()) {
    setText(shown);
    setCursorPosition(0);  // a text is read from its beginning
  }
  // Only rich text is broken into lines.
  setToolTip(shown.isEmpty()
                 ? tip_
                 : QStringLiteral("<p>%1</p><p>%2</p>").arg(tip_.toHtmlEscaped(), shown.toHtmlEscaped()));
  setPalette(PaletteOf(model_, QPalette::Base, QPalette::Text));
  ShowState(*this, model_);
}

bool LongLabelView::event(QEvent* event) {
  // Nothing can be cut from here, and the same keys would leave the program.
  if (event->type() == QEvent::ShortcutOverride &&
      dynamic_cast<QKeyEvent&>(*event).matches(QKeySequence::Cut)) {
    event->accept();
    return true;
  }
  return QLineEdit::event(event);
}

}  // namespace keplo::qt
