#include "qt/label_view.h"

#include "qt/control_look.h"
#include "qt/text.h"

namespace keplo::qt {

LabelView::LabelView(ui::Label& model, std::string_view caption, QWidget* parent, QPalette::ColorRole ground)
    : QLabel(parent),
      model_(model),
      caption_(ShownText(caption)),
      link_(model.OnChanged, [this] { Redraw(); }) {
  setTextFormat(Qt::PlainText);
  setFrameStyle(QFrame::Panel | QFrame::Sunken);
  setAutoFillBackground(true);
  setBackgroundRole(ground);
  setForegroundRole(ground == QPalette::Base ? QPalette::Text : QPalette::WindowText);
  setIndent(5);
  Redraw();
}

void LabelView::Redraw() {
  setText(ShownText(model_.Text()));
  setAccessibleName(caption_ + QLatin1Char(' ') + text());
  setPalette(PaletteOf(model_, backgroundRole(), foregroundRole()));
  ShowState(*this, model_);
}

}  // namespace keplo::qt
