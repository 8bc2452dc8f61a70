#include "qt/busy.h"

#include <QApplication>
#include <QMouseEvent>
#include <QTimer>
#include <utility>

namespace keplo::qt {

namespace {

/// Holds the input of the whole program back while it is busy, and then until what came meanwhile is gone.
class InputGate : public QObject {
 public:
  explicit InputGate(QCoreApplication& application) {
    draining_.setSingleShot(true);
    draining_.callOnTimeout(this, [this] { Drain(); });
    application.installEventFilter(this);
  }

  /// Goes with the code that it is made of: a host may unload the component before the application ends.
  static InputGate& Here() {
    static InputGate gate(*qApp);
    return gate;
  }

  int Busy() const { return busy_; }
  void SetBusy(int busy) {
    busy_ = busy;
    if (busy_ > 0) return;
    // What is waiting can be fetched only once the event loop runs again.
    drained_ = false;
    draining_.start(0);
  }

  bool eventFilter(QObject* receiver, QEvent* event) override {
    const bool shut = busy_ > 0 || !drained_;
    switch (event->type()) {
      case QEvent::ShortcutOverride:
        if (shut) event->accept();  // else the key is looked up among the shortcuts
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
    // Asks the window system for all it has, and waits for it; the second time takes what was on its way.
    for (int time = 0; time < 2; ++time) QGuiApplication::sync();
    drained_ = busy_ == 0 && !draining_.isActive();
  }

  int busy_ = 0;
  bool drained_ = true;
  QTimer draining_;
  Qt::MouseButtons dropped_;  // pressed while the gate was shut and not let go yet
};

}  // namespace

Busy::Busy() {
  QApplication::setOverrideCursor(Qt::WaitCursor);
  InputGate& gate = InputGate::Here();
  gate.SetBusy(gate.Busy() + 1);
}

Busy::~Busy() {
  QApplication::restoreOverrideCursor();
  InputGate& gate = InputGate::Here();
  gate.SetBusy(gate.Busy() - 1);
}

AskingMeanwhile::AskingMeanwhile() : busyBefore_(InputGate::Here().Busy()) {
  QApplication::setOverrideCursor(Qt::ArrowCursor);
  if (busyBefore_ > 0) InputGate::Here().SetBusy(0);
}

AskingMeanwhile::~AskingMeanwhile() {
  QApplication::restoreOverrideCursor();
  if (busyBefore_ > 0) InputGate::Here().SetBusy(busyBefore_);
}

}  // namespace keplo::qt
