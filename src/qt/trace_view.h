#pragma once

#include <QImage>
#include <QWidget>
#include <optional>

#include "qt/model_link.h"
#include "window/form1.h"

namespace keplo::qt {

/// The box that the trace is seen on: a part of the form's surface over a back colour, with a time axis along
/// its foot, the run under the pointer and the distance of two cursors along its top. The window's line of
/// text stands there too, while the pointer is elsewhere.
///
/// The wheel zooms where the pointer is, dragging slides, a click places a cursor and a double click shows
/// the whole trace. Of the keys, left and right go from run to run, with Ctrl they slide; plus and minus
/// zoom, space places a cursor, 0 shows the whole trace and Esc takes the cursors away. The picture is drawn
/// when the surface shows another one; being covered or uncovered costs no drawing.
class TraceView : public QWidget {
 public:
  /// @param part of the surface that the box shows, pixels of the design
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
  /// From pixels of the box to pixels of the design, and back from a sample to pixels of the box.
  double Place(double across) const { return part_.left() + across * part_.width() / width(); }
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
