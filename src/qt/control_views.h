#pragma once

#include <QWidget>

#include "window/form1.h"
#include "window/layout.h"

namespace keplo::qt {

/// Makes the widget that shows a control of the main window, with its tip and its name for a screen reader.
QWidget* MakeControlView(Form1& form, const ControlRow& row, QWidget* parent);

/// The least size, in pixels, at which a control shows whatever text it may come to hold; for fields that
/// can be scrolled, the least that shows some.
QSize LeastSize(const ControlRow& row, const QWidget& view);

}  // namespace keplo::qt
