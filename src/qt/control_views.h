#pragma once

#include <QWidget>

#include "window/form1.h"
#include "window/layout.h"

namespace keplo::qt {

/// Creates the widget for a control of the main window, with its tip and its name for screen readers.
QWidget* MakeControlView(Form1& form, const ControlRow& row, QWidget* parent);

/// The smallest size, in pixels, that fits every text of a control, or part of the text if the control can
/// scroll.
QSize LeastSize(const ControlRow& row, const QWidget& view);

}  // namespace keplo::qt
