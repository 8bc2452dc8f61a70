#pragma once

#include <QSocketNotifier>
#include <memory>

#include "line/line_rest.h"
#include "qt/qt_timer.h"

namespace keplo::qt {

/// Ticks the monitoring timer. While the line is at rest and can wake the program itself, ticks are skipped.
class LineTimer : public QtTimer {
 public:
  /// @param line null if no tick may be skipped
  LineTimer(ui::Timer& model, LineRest* line, QObject* parent = nullptr);

 private:
  void Pace();
  void Rest(std::chrono::milliseconds time);
  void Wake();

  LineRest* line_;
  std::chrono::milliseconds pace_;
  std::unique_ptr<QSocketNotifier> wake_;
  QTimer care_;  // looks after the device while there are no ticks
};

}  // namespace keplo::qt
