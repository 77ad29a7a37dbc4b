#pragma once

#include <QColor>
#include <QPainter>
#include <QPainterPath>
#include <QRectF>

#include <initializer_list>

namespace fleetwise {

/// A square of a fixed number of units to draw a small sign in, in the middle of an area and as
/// large as fits. The painter is changed for as long as this lives: smooth, with the colour as its
/// brush and without a pen. The painter must outlive it.
class DrawingBox {
public:
    DrawingBox(QPainter& givenPainter, const QRectF& area, double unitsPerSide,
               const QColor& colour);
    DrawingBox(const DrawingBox&) = delete;
    DrawingBox& operator=(const DrawingBox&) = delete;
    ~DrawingBox();

    void fill(const QPainterPath& path) const;

    /// With round ends and corners, in units.
    void stroke(const QPainterPath& path, double width) const;

private:
    QPainter& painter;
};

QPainterPath polyline(std::initializer_list<QPointF> points);
QPainterPath polygon(std::initializer_list<QPointF> points);
QPainterPath circle(const QPointF& centre, double radius);

}  // namespace fleetwise
