#include "qt/wait_line.h"

#include <QApplication>
#include <QScreen>
#include <algorithm>

#include "qt/text.h"

namespace keplo::qt {

namespace {

constexpr qint64 kDelay = 150;  // milliseconds
constexpr int kMargin = 3;      // pixels

}  // namespace

WaitLine::WaitLine(QWidget& window, const QWidget& over)
    : window_(window), over_(over), inWindow_(&window), alone_(nullptr, Qt::SplashScreen) {
  for (QLabel* line : {&inWindow_, &alone_}) {
    line->hide();
    line->setTextFormat(Qt::PlainText);
    line->setAutoFillBackground(true);
    line->setBackgroundRole(QPalette::ToolTipBase);
    line->setForegroundRole(QPalette::ToolTipText);
    line->setFrameStyle(QFrame::Box | QFrame::Plain);
    line->setMargin(kMargin);
    line->setWordWrap(line == &inWindow_);
  }
  inWindow_.setObjectName(QStringLiteral("WaitLine"));
}

void WaitLine::Show(std::string_view text) {
  if (text.empty()) {
    End();
    return;
  }
  if (!busy_) Begin();
  QLabel& line = window_.isVisible() ? inWindow_ : alone_;
  if (&line == &alone_ && since_.elapsed() < kDelay) return;
  line.setText(ShownText(text));
  if (&line == &inWindow_) {
    // At the small size, only a corner of that part may be visible.
    const QRect over(over_.mapTo(&window_, QPoint(0, 0)), over_.size());
    const int width = std::min(over.width(), window_.width());
    const int height = line.heightForWidth(width);
    const int bottom = std::min(over.bottom() + 1, window_.height());
    line.setGeometry(std::min(over.left(), window_.width() - width), bottom - height, width, height);
    line.raise();
  } else {
    line.adjustSize();
    line.move(QApplication::primaryScreen()->geometry().center() - line.rect().center());
  }
  line.show();
  line.repaint();
}

void WaitLine::Begin() {
  since_.start();
  busy_.emplace();
  // Removes the traces of a box that has just been closed.
  if (window_.isVisible()) window_.repaint();
}

void WaitLine::End() {
  if (!busy_) return;
  inWindow_.hide();
  alone_.hide();
  busy_.reset();
}

}  // namespace keplo::qt
