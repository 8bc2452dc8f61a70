#pragma once

#include <QGridLayout>
#include <QLabel>
#include <QWidget>
#include <string_view>

namespace keplo::qt {

/// Width of a number of average letters in a widget's font, pixels.
int LettersWide(const QWidget& widget, int letters);

/// Sets the object name, the name for screen readers and the tip of a widget.
void SetIdentity(QWidget& widget, std::string_view name, std::string_view spoken, std::string_view tip);

/// Appends a row with a label and a field, wide enough for most names.
/// @param caption of the label, with its access key marked
QLabel* AddLabelledRow(QGridLayout& rows, const QString& caption, QWidget& field);

}  // namespace keplo::qt
