#include "qt/text_box_view.h"

#include <QApplication>
#include <QKeyEvent>

#include "qt/control_look.h"
#include "qt/text.h"

namespace keplo::qt {

TextBoxView::TextBoxView(ui::TextBox& model, QWidget* parent, QPalette::ColorRole ground)
    : QLineEdit(parent), model_(model), ground_(ground), link_(model.OnChanged, [this] { Redraw(); }) {
  Redraw();
  connect(this, &QLineEdit::textEdited, this, [this](const QString& typed) {
    if (link_.Alive()) model_.SetText(TypedText(typed));
  });
}

void TextBoxView::Redraw() {
  // Setting the same text again would move the cursor.
  if (const QString shown = ShownText(model_.Text()); shown != text()) setText(shown);
  ShowColours();
  ShowState(*this, model_);
}

void TextBoxView::ShowColours() {
  QPalette colours = PaletteOf(model_, QPalette::Base, QPalette::Text);
  if (!model_.BackColour() && ground_ != QPalette::Base) {
    const QColor ground = QApplication::palette().color(ground_);
    colours.setColor(QPalette::Base, ground);
    colours.setColor(QPalette::Text, InkOn(ground));
  }
  showingColours_ = true;
  setPalette(colours);
  showingColours_ = false;
}

bool TextBoxView::event(QEvent* event) {
  // If there is no typing to undo, Ctrl+Z is the Undo of the window.
  if (event->type() == QEvent::ShortcutOverride && !isUndoAvailable() &&
      dynamic_cast<QKeyEvent*>(event)->matches(QKeySequence::Undo)) {
    return false;
  }
  return QLineEdit::event(event);
}

void TextBoxView::changeEvent(QEvent* event) {
  QLineEdit::changeEvent(event);
  const bool otherLooks = event->type() == QEvent::PaletteChange && !showingColours_;
  if (otherLooks && link_.Alive()) ShowColours();
}

}  // namespace keplo::qt
