#include "qt/dialog_rows.h"

#include "qt/text.h"

namespace keplo::qt {

namespace {

constexpr int kFieldLetters = 36;

}  // namespace

int LettersWide(const QWidget& widget, int letters) {
  return widget.fontMetrics().averageCharWidth() * letters;
}

void SetIdentity(QWidget& widget, std::string_view name, std::string_view spoken, std::string_view tip) {
  widget.setObjectName(ShownText(name));
  widget.setAccessibleName(ShownText(spoken));
  widget.setToolTip(ShownText(tip));
  widget.setAccessibleDescription(ShownText(tip));
}

QLabel* AddLabelledRow(QGridLayout& rows, const QString& caption, QWidget& field) {
  auto* label = new QLabel(caption, field.parentWidget());
  label->setTextFormat(Qt::PlainText);
  label->setBuddy(&field);
  const int row = rows.rowCount();
  rows.addWidget(label, row, 0);
  rows.addWidget(&field, row, 1);
  field.setMinimumWidth(LettersWide(field, kFieldLetters));
  return label;
}

}  // namespace keplo::qt
