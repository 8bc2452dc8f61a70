#pragma once

#include <functional>
#include <vector>

#include "ui/colour.h"

namespace keplo::ui {

/// Records points and lines, each in drawing order, for a view to paint. Coordinates are design pixels, with
/// fractions, from the upper left corner; a point is one pixel.
class DrawingSurface {
 public:
  struct Point {
    double X, Y;
    Colour Pen;
    bool operator==(const Point&) const = default;
  };
  struct Line {
    double X1, Y1, X2, Y2;
    Colour Pen;
    bool operator==(const Line&) const = default;
  };

  DrawingSurface(int width, int height) : Width(width), Height(height) {}

  const int Width, Height;  // pixels

  const std::vector<Point>& Points() const { return points_; }
  const std::vector<Line>& Lines() const { return lines_; }

  void Clear() {
    points_.clear();
    lines_.clear();
  }
  void PlotPoint(double x, double y, Colour pen) { points_.push_back({x, y, pen}); }
  void DrawLine(double x1, double y1, double x2, double y2, Colour pen) {
    lines_.push_back({x1, y1, x2, y2, pen});
  }

  /// Ends a drawing; only then does a view show it.
  void Show() const {
    if (OnShow) OnShow();
  }

  std::function<void()> OnShow;

 private:
  std::vector<Point> points_;
  std::vector<Line> lines_;
};

}  // namespace keplo::ui
