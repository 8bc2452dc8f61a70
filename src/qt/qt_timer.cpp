#include "qt/qt_timer.h"

namespace keplo::qt {

QtTimer::QtTimer(ui::Timer& model, QObject* parent)
    : QTimer(parent), model_(model), link_(model.OnEnabledChanged, [this] { FollowModel(); }) {
  setTimerType(Qt::PreciseTimer);  // a coarse timer is less accurate than the 2 ms of the monitor
  setInterval(model.Interval);
  callOnTimeout(this, [this] {
    if (link_.Alive()) {
      model_.Tick();
    } else {
      stop();
    }
  });
  FollowModel();
}

void QtTimer::FollowModel() {
  if (model_.Enabled()) {
    start();
  } else {
    stop();
  }
}

}  // namespace keplo::qt
