#include "qt/trace_view.h"

#include <QApplication>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QWheelEvent>
#include <algorithm>
#include <cmath>
#include <utility>
#include <vector>

#include "qt/control_look.h"
#include "qt/text.h"

namespace keplo::qt {

namespace {

constexpr double kWheelStep = 120;  // eighths of a degree that double or halve the zoom

const QColor kAxisColour(0x9A, 0x9A, 0x9A), kCursorColour(0xFF, 0xD0, 0x40), kPointerColour(0x7F, 0xD4, 0xFF),
    kNoteColour(0xE0, 0xE0, 0xE0);
constexpr double kLetterScale = 0.85;  // relative to the font of the window
constexpr int kLettersPerLabel = 12;   // minimum distance between labels of the axis
constexpr double kFarAway = 30000;     // pixels or samples
// Pixels.
constexpr int kLongTick = 8, kShortTick = 3, kTextGap = 3, kPointerPen = 2;

QColor Shown(ui::Colour colour) { return {colour.Red, colour.Green, colour.Blue}; }

/// Converts design pixels to device pixels. Everything is at least one device pixel wide and high.
class Grid {
 public:
  Grid(const QRectF& part, const QSize& pixels)
      : part_(part), across_(pixels.width() / part.width()), down_(pixels.height() / part.height()) {}

  /// The level of a sample, up to the X of the next one.
  QRect Level(const ui::DrawingSurface::Point& point, double next) const {
    const int left = Across(point.X);
    return {left, Down(point.Y), std::max(1, Across(next) - left), Pen(down_)};
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

TraceView::TraceView(Form1& form, const QRectF& part, QWidget* parent)
    : QWidget(parent),
      form_(form),
      part_(part),
      boxLink_(form.Signal.OnChanged,
               [this] {
                 stale_ = true;
                 ShowState(*this, form_.Signal);
                 update();
               }),
      surfaceLink_(form.Surface.OnShow,
                   [this] {
                     stale_ = true;
                     Changed();
                   }),
      noteLink_(form.Note.OnChanged, [this] { Changed(); }) {
  setAttribute(Qt::WA_OpaquePaintEvent);
  setFocusPolicy(Qt::ClickFocus);
  setMouseTracking(true);
  QFont small = font();
  small.setPointSizeF(small.pointSizeF() * kLetterScale);
  setFont(small);
}

void TraceView::Draw() {
  const QSize pixels = (QSizeF(size()) * devicePixelRatioF()).toSize();
  if (!Alive() || (!stale_ && picture_.size() == pixels)) return;
  stale_ = false;
  picture_ = QImage(pixels, QImage::Format_RGB32);
  picture_.fill(form_.Signal.BackColour() ? Shown(*form_.Signal.BackColour())
                                          : palette().color(QPalette::Window));
  QPainter painter(&picture_);
  const Grid grid(part_, pixels);
  std::vector<ui::DrawingSurface::Point> points = form_.Surface.Points();
  if (const auto entry = form_.WaveEntry()) points.insert(points.begin(), *entry);
  QRect last;
  for (std::size_t i = 0; i < points.size(); ++i) {
    // A level extends to the next sample, however far away that is.
    const bool isLast = i + 1 == points.size();
    const QRect dot = grid.Level(points[i], isLast ? form_.WaveEnd() : points[i + 1].X);
    // At low zoom many samples fall on one pixel.
    if (dot != last) painter.fillRect(dot, Shown(points[i].Pen));
    last = dot;
  }
  for (const auto& line : form_.Surface.Lines()) {
    const QRect edge = grid.Edge(line);
    if (edge != last) painter.fillRect(edge, Shown(line.Pen));
    last = edge;
  }
}

void TraceView::paintEvent(QPaintEvent* /*event*/) {
  Draw();
  QPainter painter(this);
  painter.drawImage(rect(), picture_);
  if (!Alive()) return;
  DrawNote(painter);
  if (form_.Wave.Samples() == 0) return;
  DrawAxis(painter);
  DrawCursors(painter);
  DrawTexts(painter);
}

void TraceView::DrawAxis(QPainter& painter) const {
  const double msPerPixel = (form_.WaveSample(Place(1)) - form_.WaveSample(Place(0))) * kMsPerSample;
  const double from = std::max(form_.WaveSample(Place(0)) * kMsPerSample, 0.0);
  const double to = std::min(form_.WaveSample(Place(width())), 1.0 * form_.Wave.Samples()) * kMsPerSample;
  const double room = kLettersPerLabel * fontMetrics().averageCharWidth();
  painter.setPen(kAxisColour);
  for (const TimeTick& tick : TimeTicks(from, to, room * msPerPixel)) {
    const int x = static_cast<int>(std::lround(Across(tick.Ms / kMsPerSample)));
    painter.drawLine(x, height() - (tick.Labelled ? kLongTick : kShortTick), x, height());
    if (!tick.Labelled) continue;
    const QString label = QString::fromStdString(TimeText(tick.Ms) + " ms");
    if (x + kTextGap + fontMetrics().horizontalAdvance(label) > width()) continue;
    painter.drawText(x + kTextGap, height() - fontMetrics().descent(), label);
  }
}

void TraceView::DrawCursors(QPainter& painter) const {
  painter.setPen(kCursorColour);
  for (const int cursor : form_.Wave.Cursors()) {
    const int x = static_cast<int>(std::lround(Across(cursor)));
    painter.drawLine(x, 0, x, height());
  }
  if (const WaveRun* run = form_.Wave.RunAtPointer()) {
    const double from = Across(run->Start), to = Across(run->End());
    painter.fillRect(QRectF(from, fontMetrics().height(), std::max(to - from, 1.0), kPointerPen),
                     kPointerColour);
    if (hasFocus()) {
      painter.setPen(QPen(kPointerColour, 1, Qt::DotLine));
      const int x = static_cast<int>(std::lround(Across(*form_.Wave.Pointer())));
      painter.drawLine(x, fontMetrics().height(), x, height());
    }
  }
}

void TraceView::DrawTexts(QPainter& painter) const {
  const QRect top(kTextGap, 0, width() - 2 * kTextGap, fontMetrics().height());
  painter.setPen(kPointerColour);
  painter.drawText(top, Qt::AlignLeft | Qt::AlignVCenter, ShownText(form_.Wave.PointerText(Pulse())));
  painter.setPen(kCursorColour);
  painter.drawText(top, Qt::AlignRight | Qt::AlignVCenter, ShownText(form_.Wave.CursorText(Pulse())));
}

void TraceView::DrawNote(QPainter& painter) const {
  const bool hasTrace = form_.Wave.Samples() != 0;
  if (hasTrace && (form_.Wave.Pointer() || !form_.Wave.Cursors().empty())) return;
  const QString note = ShownText(form_.Note.Text());
  painter.setPen(kNoteColour);
  const QRect inside = rect().adjusted(kTextGap, 0, -kTextGap, 0);
  if (!hasTrace) return painter.drawText(inside, Qt::AlignCenter | Qt::TextWordWrap, note);
  const QRect top(inside.left(), 0, inside.width(), fontMetrics().height());
  painter.drawText(top, Qt::AlignLeft | Qt::AlignVCenter,
                   fontMetrics().elidedText(note, Qt::ElideRight, top.width()));
}

double TraceView::Across(double sample) const {
  const double across = (form_.WavePlace(sample) - part_.left()) * width() / part_.width();
  return std::clamp(across, -kFarAway, kFarAway);  // at high zoom it could overflow
}

int TraceView::Pulse() const { return form_.Pulse(); }

void TraceView::Changed() {
  // For screen readers.
  std::string seen = form_.Wave.PointerText(Pulse()) + " " + form_.Wave.CursorText(Pulse());
  if (const std::string& note = form_.Note.Text(); !note.empty()) seen += " " + note;
  setAccessibleDescription(ShownText(seen));
  update();
}

void TraceView::PointAt(double across) {
  const double sample = std::floor(form_.WaveSample(Place(across)));
  form_.Wave.PointAt(static_cast<int>(std::clamp(sample, -1.0, 1.0 * form_.Wave.Samples())));
  Changed();
}

void TraceView::ShowPointer() {
  const double across = Across(form_.Wave.Pointer().value_or(0));
  const double samplesPerPixel = form_.WaveSample(Place(1)) - form_.WaveSample(Place(0));
  // If it is not visible, moves it to a quarter of the width.
  if (across < kTextGap || across > width() - kTextGap) Slide((width() / 4.0 - across) * samplesPerPixel);
  Changed();
}

void TraceView::Slide(double samples) {
  form_.SlideWave(static_cast<int>(std::clamp(samples, -kFarAway, kFarAway)));
}

void TraceView::wheelEvent(QWheelEvent* event) {
  event->accept();
  if (!Alive()) return;
  form_.ZoomWave(Place(event->position().x()), std::pow(2.0, event->angleDelta().y() / kWheelStep));
  PointAt(event->position().x());
}

void TraceView::mousePressEvent(QMouseEvent* event) {
  if (event->button() != Qt::LeftButton) return;
  pressedAt_ = event->position().x();
  dragging_ = false;
}

void TraceView::mouseMoveEvent(QMouseEvent* event) {
  if (!Alive()) return;
  const double x = event->position().x();
  if (pressedAt_ && (dragging_ || std::abs(x - *pressedAt_) >= QApplication::startDragDistance())) {
    dragging_ = true;
    const double samples = form_.WaveSample(Place(x)) - form_.WaveSample(Place(*pressedAt_));
    // Accumulates moves of less than a sample.
    if (std::abs(samples) >= 1) pressedAt_ = x;
    Slide(samples);
  }
  PointAt(x);
}

void TraceView::mouseReleaseEvent(QMouseEvent* event) {
  if (event->button() != Qt::LeftButton || !std::exchange(pressedAt_, std::nullopt) || !Alive()) return;
  if (!dragging_) {
    PointAt(event->position().x());
    form_.Wave.PlaceCursor();
  }
  Changed();
}

void TraceView::mouseDoubleClickEvent(QMouseEvent* /*event*/) {
  pressedAt_.reset();  // the release that follows must not place a cursor
  if (!Alive()) return;
  form_.Wave.UndoCursor();  // placed by the first click
  form_.FitWave();
}

void TraceView::leaveEvent(QEvent* /*event*/) {
  if (!Alive() || hasFocus()) return;
  form_.Wave.PointAt(std::nullopt);
  Changed();
}

void TraceView::keyPressEvent(QKeyEvent* event) {
  if (!Alive()) return;
  const double here = form_.WavePlace(form_.Wave.Pointer().value_or(0));
  const bool slides = event->modifiers().testFlag(Qt::ControlModifier);
  switch (event->key()) {
    case Qt::Key_Left:
    case Qt::Key_Right: {
      const int step = event->key() == Qt::Key_Right ? 1 : -1;
      if (slides) {
        form_.SlideWave(-step * form_.HScroll1.SmallChange);
      } else {
        form_.Wave.StepPointer(step);
        ShowPointer();
      }
      return;
    }
    case Qt::Key_Plus:
    case Qt::Key_Equal:
      form_.ZoomWave(here, 2);
      return ShowPointer();
    case Qt::Key_Minus:
      form_.ZoomWave(here, 1 / 2.0);
      return ShowPointer();
    case Qt::Key_0:
      return form_.FitWave();
    case Qt::Key_Space:
      form_.Wave.PlaceCursor();
      return Changed();
    case Qt::Key_Escape:
      form_.Wave.RemoveCursors();
      return Changed();
    default:
      QWidget::keyPressEvent(event);
  }
}

void TraceView::focusInEvent(QFocusEvent* event) {
  QWidget::focusInEvent(event);
  if (Alive() && !form_.Wave.Pointer()) form_.Wave.StepPointer(1);
  Changed();
}

void TraceView::focusOutEvent(QFocusEvent* event) {
  QWidget::focusOutEvent(event);
  if (Alive()) Changed();
}

}  // namespace keplo::qt
