#pragma once

#include <QElapsedTimer>
#include <QLabel>
#include <optional>
#include <string_view>

#include "qt/busy.h"

namespace keplo::qt {

/// A line that tells what a window is busy with, and the cursor of a busy program with it. It lies over a
/// place of the window; while the window is not on screen yet, a wait that takes longer than a blink shows
/// the line by itself.
class WaitLine {
 public:
  /// @param over the line lies over the lower edge of this part of the window
  WaitLine(QWidget& window, const QWidget& over);
  ~WaitLine() { Show({}); }
  WaitLine(const WaitLine&) = delete;
  WaitLine& operator=(const WaitLine&) = delete;

  /// Paints the text at once; an empty one ends the wait.
  void Show(std::string_view text);

 private:
  void Begin();
  void End();

  QWidget& window_;
  const QWidget& over_;
  QLabel inWindow_;
  QLabel alone_;
  QElapsedTimer since_;
  std::optional<Busy> busy_;  // during a wait
};

}  // namespace keplo::qt
