#include "qt/trace_view.h"

#include <QPainter>
#include <algorithm>
#include <cmath>
#include <utility>

#include "qt/control_look.h"

namespace keplo::qt {

namespace {

QColor Shown(ui::Colour colour) { return {colour.Red, colour.Green, colour.Blue}; }

/// Places of the design as pixels of the screen. A dot of the design covers one of the screen at least, and
/// reaches to the place of the next.
class Grid {
 public:
  Grid(const QRectF& part, const QSize& pixels)
      : part_(part), across_(pixels.width() / part.width()), down_(pixels.height() / part.height()) {}

  QRect Dot(const ui::DrawingSurface::Point& point) const {
    const int left = Across(point.X);
    return {left, Down(point.Y), std::max(1, Across(point.X + 1) - left), Pen(down_)};
  }
  QRect Edge(const ui::DrawingSurface::Line& line) const {
    const QPoint from(Across(std::min(line.X1, line.X2)), Down(std::min(line.Y1, line.Y2)));
    const QPoint to(Across(std::max(line.X1, line.X2)), Down(std::max(line.Y1, line.Y2)));
    return {from, QSize(to.x() - from.x() + Pen(across_), to.y() - from.y() + Pen(down_))};
  }

 private:
  int Across(double x) const { return static_cast<int>(std::lround((x - part_.left()) * across_)); }
  int Down(double y) const { return static_cast<int>(std::lround((y - part_.top()) * down_)); }
  static int Pen(double scale) { return std::max(1, static_cast<int>(std::lround(scale))); }

  QRectF part_;
  double across_, down_;
};

}  // namespace

TraceView::TraceView(ui::Label& box, ui::DrawingSurface& surface, const QRectF& part, QWidget* parent)
    : QWidget(parent),
      box_(box),
      surface_(surface),
      part_(part),
      boxLink_(box.OnChanged,
               [this] {
                 stale_ = true;
                 ShowState(*this, box_);
                 update();
               }),
      surfaceLink_(surface.OnShow, [this] {
        stale_ = true;
        update();
      }) {
  setAttribute(Qt::WA_OpaquePaintEvent);
}

void TraceView::Draw() {
  const QSize pixels = (QSizeF(size()) * devicePixelRatioF()).toSize();
  if (!surfaceLink_.Alive() || !boxLink_.Alive() || (!stale_ && picture_.size() == pixels)) return;
  stale_ = false;
  picture_ = QImage(pixels, QImage::Format_RGB32);
  picture_.fill(box_.BackColour() ? Shown(*box_.BackColour()) : palette().color(QPalette::Window));
  QPainter painter(&picture_);
  const Grid grid(part_, pixels);
  std::pair<QRect, ui::Colour> last;
  const auto fill = [&](const QRect& box, ui::Colour pen) {
    // A trace that is squeezed puts many samples on one pixel.
    if (std::pair(box, pen) != last) painter.fillRect(box, Shown(pen));
    last = {box, pen};
  };
  for (const auto& point : surface_.Points()) fill(grid.Dot(point), point.Pen);
  for (const auto& line : surface_.Lines()) fill(grid.Edge(line), line.Pen);
}

void TraceView::paintEvent(QPaintEvent* /*event*/) {
  Draw();
  QPainter painter(this);
  painter.drawImage(rect(), picture_);
}

}  // namespace keplo::qt
