#pragma once

#include <QSocketNotifier>
#include <memory>

#include "line/line_rest.h"
#include "qt/qt_timer.h"

namespace keplo::qt {

/// Ticks the monitoring timer, and leaves out the ticks of a line at rest that can tell when it leaves it.
class LineTimer : public QtTimer {
 public:
  /// @param line none where every tick counts
  LineTimer(ui::Timer& model, LineRest* line, QObject* parent = nullptr);

 private:
  void Pace();
  void Rest(std::chrono::milliseconds time);
  void Wake();

  LineRest* line_;
  std::chrono::milliseconds pace_;
  std::unique_ptr<QSocketNotifier> wake_;
  QTimer care_;  // looks after the device while nobody ticks
};

}  // namespace keplo::qt
