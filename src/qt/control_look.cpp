#include "qt/control_look.h"

#include <cmath>

namespace keplo::qt {

namespace {

// The background luminance at which black and white text have the same contrast (WCAG 2.1).
constexpr double kEvenLuminance = 0.179;

}  // namespace

double Luminance(const QColor& colour) {
  const auto linear = [](double part) {
    return part <= 0.04045 ? part / 12.92 : std::pow((part + 0.055) / 1.055, 2.4);
  };
  return 0.2126 * linear(colour.redF()) + 0.7152 * linear(colour.greenF()) + 0.0722 * linear(colour.blueF());
}

QColor InkOn(const QColor& ground) { return Luminance(ground) > kEvenLuminance ? Qt::black : Qt::white; }

QPalette PaletteOf(const ui::Control& model, QPalette::ColorRole ground, QPalette::ColorRole ink) {
  QPalette colours;
  if (const auto back = model.BackColour()) {
    const QColor shown(back->Red, back->Green, back->Blue);
    colours.setColor(ground, shown);
    colours.setColor(ink, InkOn(shown));
  }
  return colours;
}

void ShowState(QWidget& view, const ui::Control& model) {
  view.setEnabled(model.Enabled());
  // A view that was never hidden appears with its window; showing it earlier would make it a window of its
  // own.
  const bool hidden = view.testAttribute(Qt::WA_WState_ExplicitShowHide) && view.isHidden();
  if (hidden == model.Visible()) view.setVisible(model.Visible());
}

}  // namespace keplo::qt
