#include "qt/qt_boxes.h"

#include <QApplication>
#include <QInputDialog>
#include <QLabel>
#include <QMessageBox>

#include "qt/text.h"

namespace keplo::qt {

namespace {

// Digits behind which a pattern may go on in the next line: a sync may be longer than any box is wide.
constexpr int kLongestPart = 16;
constexpr QChar kMayBreak(0x200B);

QString WithBreaks(const QString& text) {
  QString broken;
  int part = 0;
  for (const QChar letter : text) {
    part = letter == QLatin1Char('0') || letter == QLatin1Char('1') ? part + 1 : 0;
    if (part > kLongestPart) {
      broken += kMayBreak;
      part = 1;
    }
    broken += letter;
  }
  return broken;
}

QString Lines(std::string_view text) {
  return WithBreaks(ShownText(text).replace(QLatin1String("\r\n"), QLatin1String("\n")));
}

/// The usual cursor over a box that comes up while the program is busy.
class UsualCursor {
 public:
  UsualCursor() { QApplication::setOverrideCursor(Qt::ArrowCursor); }
  ~UsualCursor() { QApplication::restoreOverrideCursor(); }
  UsualCursor(const UsualCursor&) = delete;
  UsualCursor& operator=(const UsualCursor&) = delete;
};

int Ask(std::string_view text, std::string_view title, QMessageBox::StandardButtons buttons,
        QMessageBox::Icon icon = QMessageBox::NoIcon) {
  const UsualCursor waitingForTheUser;
  QMessageBox box(icon, ShownText(title), Lines(text), buttons, QApplication::activeWindow());
  box.setTextFormat(Qt::PlainText);
  return box.exec();
}

}  // namespace

void QtBoxes::Message(std::string_view text, std::string_view title) { Ask(text, title, QMessageBox::Ok); }

void QtBoxes::Error(std::string_view text, std::string_view title) {
  Ask(text, title, QMessageBox::Ok, QMessageBox::Critical);
}

bool QtBoxes::Confirm(std::string_view text, std::string_view title) {
  return Ask(text, title, QMessageBox::Ok | QMessageBox::Cancel) == QMessageBox::Ok;
}

bool QtBoxes::Question(std::string_view text, std::string_view title) {
  return Ask(text, title, QMessageBox::Yes | QMessageBox::No) == QMessageBox::Yes;
}

std::string QtBoxes::Input(std::string_view text, std::string_view title, std::string_view preset) {
  const UsualCursor waitingForTheUser;
  QInputDialog box(QApplication::activeWindow());
  box.setWindowTitle(ShownText(title));
  box.setLabelText(Lines(text));
  box.setTextValue(ShownText(preset));
  for (QLabel* label : box.findChildren<QLabel*>()) label->setTextFormat(Qt::PlainText);
  return box.exec() == QDialog::Accepted ? TypedText(box.textValue()) : std::string();
}

}  // namespace keplo::qt
