#include "qt/qt_boxes.h"

#include <QApplication>
#include <QInputDialog>
#include <QLabel>
#include <QMessageBox>
#include <QPointer>

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

/// A box over the active window. It may go while it is open, together with that window; this counts as a No
/// or a Cancel.
template <typename Box>
class BoxOverWindow {
 public:
  template <typename... Arguments>
  explicit BoxOverWindow(const Arguments&... arguments)
      : box_(new Box(arguments..., QApplication::activeWindow())) {}
  ~BoxOverWindow() { delete box_.data(); }
  BoxOverWindow(const BoxOverWindow&) = delete;
  BoxOverWindow& operator=(const BoxOverWindow&) = delete;

  Box* operator->() const { return box_.data(); }
  int Answer() const { return box_->exec(); }

 private:
  QPointer<Box> box_;
};

int Ask(std::string_view text, std::string_view title, QMessageBox::StandardButtons buttons,
        QMessageBox::Icon icon = QMessageBox::NoIcon) {
  const UsualCursor waitingForTheUser;
  const BoxOverWindow<QMessageBox> box(icon, ShownText(title), Lines(text), buttons);
  box->setTextFormat(Qt::PlainText);
  return box.Answer();
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
  const BoxOverWindow<QInputDialog> box;
  box->setWindowTitle(ShownText(title));
  box->setLabelText(Lines(text));
  box->setTextValue(ShownText(preset));
  for (QLabel* label : box->findChildren<QLabel*>()) label->setTextFormat(Qt::PlainText);
  return box.Answer() == QDialog::Accepted ? TypedText(box->textValue()) : std::string();
}

}  // namespace keplo::qt
