#include "qt/busy.h"

#include <QApplication>
#include <QMouseEvent>
#include <QTimer>
#include <utility>

namespace keplo::qt {

namespace {

/// Drops the input of the whole program while it is busy, and afterwards whatever arrived in that time.
class InputGate : public QObject {
 public:
  explicit InputGate(QCoreApplication& application) {
    draining_.setSingleShot(true);
    draining_.callOnTimeout(this, [this] { Drain(); });
    application.installEventFilter(this);
  }

  /// Not owned by the application: a host may unload this component, and its code, earlier.
  static InputGate& Instance() {
    static InputGate gate(*qApp);
    return gate;
  }

  int Busy() const { return busy_; }
  void SetBusy(int busy) {
    busy_ = busy;
    if (busy_ > 0) return;
    // Pending input can only be fetched once the event loop runs again.
    drained_ = false;
    draining_.start(0);
  }

  bool eventFilter(QObject* receiver, QEvent* event) override {
    const bool shut = busy_ > 0 || !drained_;
    switch (event->type()) {
      case QEvent::ShortcutOverride:
        if (shut) event->accept();  // so that the key is not tried as a shortcut
        return shut;
      case QEvent::Shortcut:
        return shut;
      case QEvent::KeyPress:
      case QEvent::Wheel:
      case QEvent::TouchBegin:
      case QEvent::TabletPress:
        return shut && receiver->isWindowType();
      case QEvent::MouseButtonPress:
      case QEvent::MouseButtonDblClick:
        return shut && receiver->isWindowType() && Drop(*dynamic_cast<QMouseEvent*>(event));
      case QEvent::MouseButtonRelease:
        return receiver->isWindowType() && BelongsToDropped(*dynamic_cast<QMouseEvent*>(event));
      default:
        return false;
    }
  }

 private:
  bool Drop(const QMouseEvent& press) {
    dropped_ |= press.button();
    return true;
  }
  bool BelongsToDropped(const QMouseEvent& release) {
    const bool dropped = dropped_.testFlag(release.button());
    dropped_ &= ~Qt::MouseButtons(release.button());
    return dropped;
  }

  void Drain() {
    // Waits until the window system has delivered everything; the second round catches what was under way.
    for (int time = 0; time < 2; ++time) QGuiApplication::sync();
    drained_ = busy_ == 0 && !draining_.isActive();
  }

  int busy_ = 0;
  bool drained_ = true;
  QTimer draining_;
  Qt::MouseButtons dropped_;  // buttons whose press was dropped and that are still down
};

}  // namespace

Busy::Busy() {
  QApplication::setOverrideCursor(Qt::WaitCursor);
  InputGate& gate = InputGate::Instance();
  gate.SetBusy(gate.Busy() + 1);
}

Busy::~Busy() {
  QApplication::restoreOverrideCursor();
  InputGate& gate = InputGate::Instance();
  gate.SetBusy(gate.Busy() - 1);
}

BusyPause::BusyPause() : busyBefore_(InputGate::Instance().Busy()) {
  QApplication::setOverrideCursor(Qt::ArrowCursor);
  if (busyBefore_ > 0) InputGate::Instance().SetBusy(0);
}

BusyPause::~BusyPause() {
  QApplication::restoreOverrideCursor();
  if (busyBefore_ > 0) InputGate::Instance().SetBusy(busyBefore_);
}

}  // namespace keplo::qt
