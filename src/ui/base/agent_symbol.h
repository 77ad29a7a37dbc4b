#pragma once

#include <QColor>
#include <QPainter>
#include <QRectF>

#include <string_view>

namespace fleetwise {

/// Draws the sign of an agent program in the middle of `area`, as large as fits. `symbol` is
/// SessionAgent::symbol(); any other name draws the question mark.
void paintAgentSymbol(QPainter& painter, const QRectF& area, std::string_view symbol,
                      const QColor& colour);

}  // namespace fleetwise
