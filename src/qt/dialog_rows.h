#pragma once

#include <QGridLayout>
#include <QLabel>
#include <QWidget>
#include <string_view>

namespace keplo::qt {

/// Pixels that so many letters of a widget's font take.
int LettersWide(const QWidget& widget, int letters);

/// Names a widget for tests and style sheets, and tells screen readers and the mouse what it is.
void Present(QWidget& widget, std::string_view name, std::string_view spoken, std::string_view tip);

/// Adds a field of a dialog after its label, below the rows that are there; most names fit without scrolling.
/// @param caption of the label, with the mark of its access key
QLabel* AddLabelledRow(QGridLayout& rows, const QString& caption, QWidget& field);

}  // namespace keplo::qt
