#include "qt/qt_boxes.h"

#include <QApplication>
#include <QGridLayout>
#include <QInputDialog>
#include <QLabel>
#include <QMessageBox>
#include <QPointer>
#include <algorithm>

#include "qt/busy.h"
#include "qt/text.h"

namespace keplo::qt {

namespace {

// Digits after which a pattern, and letters after which a word may be broken: a sync or a name may be wider
// than any box.
constexpr int kLongestPart = 16, kLongestWord = 40;
constexpr QChar kMayBreak(0x200B);

QString WithBreaks(const QString& text) {
  QString broken;
  int digits = 0, letters = 0;
  for (const QChar letter : text) {
    digits = letter == QLatin1Char('0') || letter == QLatin1Char('1') ? digits + 1 : 0;
    letters = letter.isSpace() || letter == QLatin1Char('/') ? 0 : letters + 1;
    if (digits > kLongestPart || letters > kLongestWord) {
      broken += kMayBreak;
      digits = std::min(digits, 1);
      letters = 1;
    }
    broken += letter;
  }
  return broken;
}

QString Lines(std::string_view text) {
  return WithBreaks(ShownText(text).replace(QLatin1String("\r\n"), QLatin1String("\n")));
}

/// A box over the active window. If it is destroyed together with that window while it is open, that counts
/// as No or Cancel.
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
  Box& operator*() const { return *box_; }
  int Answer() const { return box_->exec(); }

 private:
  QPointer<Box> box_;
};

// Width of the icon, buttons and margins in a title bar, letters.
constexpr int kTitleBarLetters = 18;

int WidthForTitle(const QWidget& box) {
  const QFontMetrics letters = box.fontMetrics();
  return letters.horizontalAdvance(box.windowTitle()) + kTitleBarLetters * letters.averageCharWidth();
}

/// A message box ignores a minimum width, so an empty row below the others widens it.
void WidenForTitle(const QMessageBox& box) {
  if (auto* rows = dynamic_cast<QGridLayout*>(box.layout())) {
    rows->addItem(new QSpacerItem(WidthForTitle(box), 0), rows->rowCount(), 0, 1, rows->columnCount());
  }
}

/// The contents of a message box.
struct BoxContent {
  std::string_view Text, Title;
  QMessageBox::StandardButtons Buttons = QMessageBox::Ok;
  QMessageBox::StandardButton Default = QMessageBox::Ok;
  QMessageBox::Icon Icon = QMessageBox::NoIcon;
  std::string_view Reason = {};
};

int Ask(const BoxContent& content) {
  const BusyPause pause;
  const BoxOverWindow<QMessageBox> box(content.Icon, ShownText(content.Title), Lines(content.Text),
                                       content.Buttons);
  box->setDefaultButton(content.Default);
  box->setInformativeText(Lines(content.Reason));
  for (QLabel* label : box->findChildren<QLabel*>()) label->setTextFormat(Qt::PlainText);
  WidenForTitle(*box);
  return box.Answer();
}

}  // namespace

void QtBoxes::Message(std::string_view text, std::string_view title) { Ask({text, title}); }

void QtBoxes::Explain(std::string_view text, std::string_view title, std::string_view reason) {
  Ask({.Text = text, .Title = title, .Reason = reason});
}

void QtBoxes::Error(std::string_view text, std::string_view title, std::string_view reason) {
  Ask({.Text = text, .Title = title, .Icon = QMessageBox::Critical, .Reason = reason});
}

bool QtBoxes::Confirm(std::string_view text, std::string_view title) {
  return Ask({text, title, QMessageBox::Ok | QMessageBox::Cancel}) == QMessageBox::Ok;
}

bool QtBoxes::Question(std::string_view text, std::string_view title) {
  return Ask({text, title, QMessageBox::Yes | QMessageBox::No, QMessageBox::No}) == QMessageBox::Yes;
}

std::string QtBoxes::Input(std::string_view text, std::string_view title, std::string_view preset) {
  const BusyPause pause;
  const BoxOverWindow<QInputDialog> box;
  box->setWindowTitle(ShownText(title));
  box->setLabelText(Lines(text));
  box->setTextValue(ShownText(preset));
  for (QLabel* label : box->findChildren<QLabel*>()) {
    label->setTextFormat(Qt::PlainText);
    label->setMinimumWidth(WidthForTitle(*box));  // its layout gives the box a least width of its own
  }
  return box.Answer() == QDialog::Accepted ? TypedText(box->textValue()) : std::string();
}

}  // namespace keplo::qt
