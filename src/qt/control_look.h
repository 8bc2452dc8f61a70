#pragma once

#include <QPalette>
#include <QWidget>

#include "ui/control.h"

namespace keplo::qt {

/// Relative luminance of a colour, 0 to 1 (WCAG 2.1).
double Luminance(const QColor& colour);

/// Black or white, whichever is more legible on a background.
QColor InkOn(const QColor& ground);

/// The palette of a control: its back colour and a legible text colour for the given roles; the default
/// palette if it has no back colour.
QPalette PaletteOf(const ui::Control& model, QPalette::ColorRole ground, QPalette::ColorRole ink);

/// Applies whether a control is enabled and visible.
void ShowState(QWidget& view, const ui::Control& model);

}  // namespace keplo::qt
