#pragma once

#include <QPalette>
#include <QWidget>

#include "ui/control.h"

namespace keplo::qt {

/// Relative luminance of a colour, 0 to 1 (WCAG 2.1).
double Luminance(const QColor& colour);

/// Black or white, whichever reads better on a ground.
QColor InkOn(const QColor& ground);

/// The palette of a control: its back colour and ink that reads well on it in the two roles; the toolkit's
/// own without a back colour.
QPalette PaletteOf(const ui::Control& model, QPalette::ColorRole ground, QPalette::ColorRole ink);

/// Shows whether a control can be used and is seen.
void ShowState(QWidget& view, const ui::Control& model);

}  // namespace keplo::qt
