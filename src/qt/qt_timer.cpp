#include "qt/qt_timer.h"

namespace keplo::qt {

QtTimer::QtTimer(ui::Timer& model, QObject* parent)
    : QTimer(parent), model_(model), link_(model.OnEnabledChanged, [this] { FollowModel(); }) {
  setTimerType(Qt::PreciseTimer);  // a coarse one strays by more than the 2 ms of the line watch
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
