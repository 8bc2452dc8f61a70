#include "qt/label_view.h"

#include "qt/control_look.h"
#include "qt/text.h"

namespace keplo::qt {

LabelView::LabelView(ui::Label& model, std::string_view caption, QWidget* parent)
    : QLabel(parent),
      model_(model),
      caption_(ShownText(caption)),
      link_(model.OnChanged, [this] { Redraw(); }) {
  setTextFormat(Qt::PlainText);
  setFrameStyle(QFrame::Panel | QFrame::Sunken);
  setAutoFillBackground(true);
  setBackgroundRole(QPalette::Base);
  setForegroundRole(QPalette::Text);
  setIndent(5);
  Redraw();
}

void LabelView::Redraw() {
  setText(ShownText(model_.Text()));
  setAccessibleName(caption_ + QLatin1Char(' ') + text());
  setPalette(PaletteOf(model_, QPalette::Base, QPalette::Text));
  ShowState(*this, model_);
}

}  // namespace keplo::qt
