#pragma once

#include <QTimer>

#include "qt/model_link.h"
#include "ui/timer.h"

namespace keplo::qt {

/// Ticks a timer model from Qt's event loop.
class QtTimer : public QTimer {
 public:
  explicit QtTimer(ui::Timer& model, QObject* parent = nullptr);

 private:
  void FollowModel();

  ui::Timer& model_;
  ModelLink link_;
};

}  // namespace keplo::qt
