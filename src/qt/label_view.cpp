#include "qt/label_view.h"

#include <QPalette>
#include <cmath>

#include "qt/text.h"

namespace keplo::qt {

namespace {

// Relative luminance of a colour, 0 to 1, and the luminance at which black and white letters stand out from
// it equally well (WCAG 2.1).
constexpr double kEvenLuminance = 0.179;

double Luminance(const QColor& colour) {
  const auto linear = [](double part) {
    return part <= 0.04045 ? part / 12.92 : std::pow((part + 0.055) / 1.055, 2.4);
  };
  return 0.2126 * linear(colour.redF()) + 0.7152 * linear(colour.greenF()) + 0.0722 * linear(colour.blueF());
}

}  // namespace

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
  QPalette colours;
  if (const auto back = model_.BackColour()) {
    const QColor shown(back->Red, back->Green, back->Blue);
    colours.setColor(QPalette::Base, shown);
    colours.setColor(QPalette::Text, Luminance(shown) > kEvenLuminance ? Qt::black : Qt::white);
  }
  setPalette(colours);
}

}  // namespace keplo::qt
