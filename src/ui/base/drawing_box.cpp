#include "ui/base/drawing_box.h"

#include <QPen>

#include <algorithm>

namespace fleetwise {

DrawingBox::DrawingBox(QPainter& givenPainter, const QRectF& area, double unitsPerSide,
                       const QColor& colour)
    : painter(givenPainter) {
    const double scale = std::min(area.width(), area.height()) / unitsPerSide;
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.translate(area.center() - QPointF(scale, scale) * unitsPerSide / 2);
    painter.scale(scale, scale);
    painter.setPen(Qt::NoPen);
    painter.setBrush(colour);
}

DrawingBox::~DrawingBox() {
    painter.restore();
}

void DrawingBox::fill(const QPainterPath& path) const {
    painter.fillPath(path, painter.brush());
}

void DrawingBox::stroke(const QPainterPath& path, double width) const {
    painter.strokePath(path,
                       QPen(painter.brush(), width, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
}

QPainterPath polyline(std::initializer_list<QPointF> points) {
    QPainterPath path(*points.begin());
    for (const auto& point : points)
        path.lineTo(point);
    return path;
}

QPainterPath polygon(std::initializer_list<QPointF> points) {
    QPainterPath path = polyline(points);
    path.closeSubpath();
    return path;
}

QPainterPath circle(const QPointF& centre, double radius) {
    QPainterPath path;
    path.addEllipse(centre, radius, radius);
    return path;
}

}  // namespace fleetwise
