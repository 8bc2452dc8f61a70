#include "qt/ornament.h"

#include <QPainter>
#include <QPainterPath>

namespace keplo::qt {

namespace {

constexpr double kDesignSide = 48;

void DrawWaves(QPainter& painter) {
  const QPointF sender(19, 18);
  for (const double radius : {8.0, 14.0, 20.0}) {
    painter.setPen(QPen(QColor(0xE0, 0x4F, 0x3A), 2.6, Qt::SolidLine, Qt::RoundCap));
    const QRectF circle(sender.x() - radius, sender.y() - radius, 2 * radius, 2 * radius);
    painter.drawArc(circle, 10 * 16, 70 * 16);  // sixteenths of a degree
  }
}

void DrawRemote(QPainter& painter) {
  painter.save();
  painter.translate(15, 29);
  painter.rotate(45);
  painter.setPen(QPen(QColor(0x2B, 0x3A, 0x4A), 1));
  painter.setBrush(QColor(0x5B, 0x6F, 0x86));
  painter.drawRoundedRect(QRectF(-6.5, -14, 13, 30), 3.5, 3.5);
  painter.setPen(Qt::NoPen);
  painter.setBrush(QColor(0xE0, 0x4F, 0x3A));
  painter.drawEllipse(QPointF(0, -9), 2.4, 2.4);
  painter.setBrush(QColor(0xF2, 0xF5, 0xF8));
  for (const double row : {-2.5, 2.5, 7.5, 12.0}) {
    for (const double column : {-2.8, 2.8}) painter.drawEllipse(QPointF(column, row), 1.4, 1.4);
  }
  painter.restore();
}

}  // namespace

void Ornament::paintEvent(QPaintEvent* /*event*/) {
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  painter.scale(width() / kDesignSide, height() / kDesignSide);
  DrawWaves(painter);
  DrawRemote(painter);
}

}  // namespace keplo::qt
