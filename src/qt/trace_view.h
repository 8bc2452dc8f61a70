#pragma once

#include <QImage>
#include <QWidget>
#include <optional>

#include "qt/model_link.h"
#include "window/form1.h"

namespace keplo::qt {

/// Shows the trace: a part of the form's surface, with a time axis at the bottom, and the run at the pointer
/// and the distance between the cursors at the top. If there is no pointer, the window's note is shown there.
///
/// The wheel zooms at the pointer, dragging moves the trace, a click places a cursor, and a double click
/// shows the whole trace. Left and right move from run to run, with Ctrl they move the trace; plus and minus
/// zoom, space places a cursor, 0 shows the whole trace, and Esc removes the cursors. The trace is only
/// redrawn when it changes, not when the window is uncovered.
class TraceView : public QWidget {
 public:
  /// @param part the visible part of the surface, design pixels
  TraceView(Form1& form, const QRectF& part, QWidget* parent);

 protected:
  void paintEvent(QPaintEvent* event) override;
  void wheelEvent(QWheelEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;
  void mouseDoubleClickEvent(QMouseEvent* event) override;
  void leaveEvent(QEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  void focusInEvent(QFocusEvent* event) override;
  void focusOutEvent(QFocusEvent* event) override;

 private:
  bool Alive() const { return surfaceLink_.Alive() && boxLink_.Alive(); }
  void Draw();
  void DrawAxis(QPainter& painter) const;
  void DrawCursors(QPainter& painter) const;
  void DrawTexts(QPainter& painter) const;
  void DrawNote(QPainter& painter) const;
  /// From pixels of this widget to design pixels.
  double Place(double across) const { return part_.left() + across * part_.width() / width(); }
  /// From a sample to pixels of this widget.
  double Across(double sample) const;
  void PointAt(double across);
  void Slide(double samples);
  void ShowPointer();
  void Changed();
  int Pulse() const;

  Form1& form_;
  const QRectF part_;
  QImage picture_;
  bool stale_ = true;
  std::optional<double> pressedAt_;  // pixels from the left
  bool dragging_ = false;
  ModelLink boxLink_;
  ModelLink surfaceLink_;
  ModelLink noteLink_;
};

}  // namespace keplo::qt
