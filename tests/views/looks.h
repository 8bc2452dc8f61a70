#pragma once

#include <QAbstractButton>
#include <QApplication>
#include <QGroupBox>
#include <QHeaderView>
#include <QLabel>
#include <QPalette>
#include <algorithm>
#include <string>
#include <vector>

#include "doubles/expect.h"
#include "qt/control_look.h"

namespace keplo::tests {

inline QPalette DarkPalette() {
  QPalette dark(QColor(0x2D, 0x2D, 0x30));
  dark.setColor(QPalette::Base, QColor(0x1E, 0x1E, 0x1E));
  for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText})
    dark.setColor(role, QColor(0xE6, 0xE6, 0xE6));
  return dark;
}

/// Font size and palette of a user, for as long as it lives.
class UserLooks {
 public:
  UserLooks(double fontScale, bool dark) {
    QFont larger = font_;
    larger.setPointSizeF(font_.pointSizeF() * fontScale);
    QApplication::setFont(larger);
    if (dark) QApplication::setPalette(DarkPalette());
  }
  ~UserLooks() {
    QApplication::setFont(font_);
    QApplication::setPalette(palette_);
  }
  UserLooks(const UserLooks&) = delete;
  UserLooks& operator=(const UserLooks&) = delete;

 private:
  QFont font_ = QApplication::font();
  QPalette palette_ = QApplication::palette();
};

/// Font scale and darkness of the users that a window is shown to.
constexpr std::pair<double, bool> kUsers[] = {{1, false}, {1, true}, {2, false}, {2, true}};

inline bool IsFaint(const QLabel& label) {
  const double ink = qt::Luminance(label.palette().color(label.foregroundRole()));
  const double ground = qt::Luminance(label.palette().color(label.backgroundRole()));
  return (std::max(ink, ground) + 0.05) / (std::min(ink, ground) + 0.05) < 4.5;  // WCAG 2.1, running text
}

/// What a user would complain of in a window: texts that are cut or faint, widgets that reach out of their
/// parent, and stops of the keyboard that a screen reader has no name for.
inline Texts ComplaintsAbout(const QWidget& window) {
  Texts complaints;
  for (const QWidget* widget : window.findChildren<QWidget*>()) {
    if (!widget->isVisible()) continue;
    const auto complain = [&](const std::string& word) {
      complaints.push_back(word + " " + widget->objectName().toStdString());
    };
    const auto* label = qobject_cast<const QLabel*>(widget);
    const bool speaks = qobject_cast<const QAbstractButton*>(widget) != nullptr;
    const bool stop = (widget->focusPolicy() & Qt::TabFocus) != 0;
    if (label != nullptr && IsFaint(*label)) complain("faint: " + label->text().toStdString());
    if (stop && !speaks && widget->accessibleName().isEmpty()) complain("nameless:");
    const bool hasText = label != nullptr || speaks;
    if (!hasText && widget->focusPolicy() == Qt::NoFocus && qobject_cast<const QGroupBox*>(widget) == nullptr)
      continue;
    const QSize needed = hasText ? widget->sizeHint() : widget->minimumSizeHint();
    if (needed.expandedTo(widget->size()) != widget->size() ||
        !widget->parentWidget()->rect().contains(widget->geometry()))
      complain("cut:");
  }
  for (const QHeaderView* header : window.findChildren<QHeaderView*>()) {
    for (int column = 0; column < header->count(); ++column) {
      if (header->sectionSize(column) < header->sectionSizeHint(column))
        complaints.emplace_back("cut: heading");
    }
  }
  return complaints;
}

}  // namespace keplo::tests
