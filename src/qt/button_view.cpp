#include "qt/button_view.h"

#include <QApplication>
#include <QPointer>
#include <utility>

#include "qt/control_look.h"

namespace keplo::qt {

namespace {

// Pixels between caption and edge, to either side.
constexpr int kRoomAcross = 3, kRoomDown = 1;

// An event loop without glib serves the timers ahead of the input, so the second turn is the first that is
// behind all waiting input with any loop.
constexpr int kTurnsToDrop = 2;

bool IsPress(QEvent::Type type) {
  switch (type) {
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonRelease:
    case QEvent::MouseButtonDblClick:
    case QEvent::KeyPress:
    case QEvent::KeyRelease:
    case QEvent::Shortcut:
      return true;
    default:
      return false;
  }
}

}  // namespace

ButtonView::ButtonView(ui::Button& model, const QString& caption, QWidget* parent)
    : QPushButton(caption, parent), model_(model), link_(model.OnChanged, [this] { Redraw(); }) {
  setAutoDefault(true);  // Enter clicks the button that has the focus
  Redraw();
  connect(this, &QPushButton::clicked, this, [this] { Click(); });
  connect(&dropping_, &QTimer::timeout, this, [this] {
    if (--turnsToDrop_ == 0) dropping_.stop();
  });
}

QSize ButtonView::sizeHint() const {
  if (text().isEmpty()) return {};
  return fontMetrics().size(Qt::TextShowMnemonic, text()) + QSize(2 * kRoomAcross, 2 * kRoomDown);
}

bool ButtonView::event(QEvent* event) {
  return (dropping_.isActive() && IsPress(event->type())) || QPushButton::event(event);
}

void ButtonView::Click() {
  const QPointer<ButtonView> self(this);
  if (!link_.Alive()) return;
  inClick_ = true;
  model_.Click();
  if (self) inClick_ = false;
}

void ButtonView::Redraw() {
  const bool disabledNow = !model_.Enabled() && isEnabled();
  if (disabledNow) hadFocus_ = window()->focusWidget() == this;
  const bool enabledAgain = model_.Enabled() && !isEnabled();
  ShowState(*this, model_);
  if (enabledAgain && std::exchange(hadFocus_, false)) setFocus();
  if (inClick_ && model_.Enabled() == working_) ShowWork(!model_.Enabled());
}

void ButtonView::ShowWork(bool working) {
  working_ = working;
  if (working) {
    QApplication::setOverrideCursor(Qt::WaitCursor);
    window()->repaint();
  } else {
    QApplication::restoreOverrideCursor();
    turnsToDrop_ = kTurnsToDrop;
    dropping_.start(0);
  }
}

}  // namespace keplo::qt
