#pragma once

#include <QImage>
#include <QWidget>

#include "qt/model_link.h"
#include "ui/drawing_surface.h"
#include "ui/label.h"

namespace keplo::qt {

/// The box that a trace is seen on: a part of a drawing surface over a back colour. The picture is drawn when
/// the surface shows another one; being covered or uncovered costs no drawing.
class TraceView : public QWidget {
 public:
  /// @param part of the surface that the box shows, pixels of the design
  TraceView(ui::Label& box, ui::DrawingSurface& surface, const QRectF& part, QWidget* parent);

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  void Draw();

  ui::Label& box_;
  const ui::DrawingSurface& surface_;
  const QRectF part_;
  QImage picture_;
  bool stale_ = true;
  ModelLink boxLink_;
  ModelLink surfaceLink_;
};

}  // namespace keplo::qt
