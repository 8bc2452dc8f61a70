#pragma once

#include <QElapsedTimer>
#include <QLabel>
#include <optional>
#include <string_view>

#include "qt/busy.h"

namespace keplo::qt {

/// A line of text that says what a window is busy with, together with the busy cursor. It covers part of the
/// window; if the window is not visible yet, the line appears on its own after a short delay.
class WaitLine {
 public:
  /// @param over the part of the window whose lower edge the line covers
  WaitLine(QWidget& window, const QWidget& over);
  ~WaitLine() { Show({}); }
  WaitLine(const WaitLine&) = delete;
  WaitLine& operator=(const WaitLine&) = delete;

  /// Paints the text at once; an empty text ends the wait.
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
