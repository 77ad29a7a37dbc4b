#pragma once

#include <QColor>
#include <QPainter>
#include <QRectF>

namespace fleetwise {

/// Fills the part `share` of a slim bar with round ends: all of it from 1 on, a dot at the least,
/// and nothing for nothing.
void fillBar(QPainter& painter, const QRectF& bar, double share, const QColor& colour);

}  // namespace fleetwise
