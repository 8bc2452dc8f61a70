#pragma once

#include <QAbstractButton>
#include <QApplication>
#include <QGroupBox>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QPalette>
#include <cmath>
#include <string>
#include <vector>

namespace keplo::tests {

inline QPalette DarkPalette() {
  QPalette dark(QColor(0x2D, 0x2D, 0x30));
  dark.setColor(QPalette::Base, QColor(0x1E, 0x1E, 0x1E));
  for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText}) {
    dark.setColor(role, QColor(0xE6, 0xE6, 0xE6));
  }
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

inline std::string NameOf(const QWidget& widget) {
  const auto* label = qobject_cast<const QLabel*>(&widget);
  const QString name = label != nullptr ? label->text() : widget.objectName();
  return std::string(widget.metaObject()->className()) + " " + name.toStdString();
}

/// The widgets under one that show less than their whole text, or reach out of their parent.
inline std::vector<std::string> ClippedIn(const QWidget& window) {
  std::vector<std::string> clipped;
  for (const QWidget* widget : window.findChildren<QWidget*>()) {
    const bool hasText = qobject_cast<const QLabel*>(widget) != nullptr ||
                         qobject_cast<const QAbstractButton*>(widget) != nullptr;
    const bool isField =
        widget->focusPolicy() != Qt::NoFocus || qobject_cast<const QGroupBox*>(widget) != nullptr;
    if (!widget->isVisible() || !(hasText || isField)) continue;
    const QSize needed = hasText ? widget->sizeHint() : widget->minimumSizeHint();
    const bool fits = widget->width() >= needed.width() && widget->height() >= needed.height();
    if (!fits || !widget->parentWidget()->rect().contains(widget->geometry()))
      clipped.push_back(NameOf(*widget));
  }
  for (const QHeaderView* header : window.findChildren<QHeaderView*>()) {
    for (int column = 0; column < header->count(); ++column) {
      if (header->sectionSize(column) < header->sectionSizeHint(column)) {
        clipped.push_back("column " + std::to_string(column));
      }
    }
  }
  return clipped;
}

/// The widgets under one that the keyboard reaches and a screen reader has no name for.
inline std::vector<std::string> NamelessIn(const QWidget& window) {
  std::vector<std::string> nameless;
  for (const QWidget* widget : window.findChildren<QWidget*>()) {
    const bool reached = widget->isVisible() && (widget->focusPolicy() & Qt::TabFocus) != 0;
    const bool speaksItsText = qobject_cast<const QAbstractButton*>(widget) != nullptr;
    if (reached && !speaksItsText && widget->accessibleName().isEmpty()) nameless.push_back(NameOf(*widget));
  }
  return nameless;
}

inline double Luminance(const QColor& colour) {
  const auto linear = [](double part) {
    return part <= 0.04045 ? part / 12.92 : std::pow((part + 0.055) / 1.055, 2.4);
  };
  return 0.2126 * linear(colour.redF()) + 0.7152 * linear(colour.greenF()) + 0.0722 * linear(colour.blueF());
}

/// The labels under a widget whose letters stand out less from their ground than 4.5 to 1, the least for
/// running text (WCAG 2.1).
inline std::vector<std::string> FaintIn(const QWidget& window) {
  std::vector<std::string> faint;
  for (const QLabel* label : window.findChildren<QLabel*>()) {
    const double ink = Luminance(label->palette().color(label->foregroundRole()));
    const double ground = Luminance(label->palette().color(label->backgroundRole()));
    if ((std::max(ink, ground) + 0.05) / (std::min(ink, ground) + 0.05) < 4.5)
      faint.push_back(NameOf(*label));
  }
  return faint;
}

}  // namespace keplo::tests
