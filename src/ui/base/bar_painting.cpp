#include "ui/base/bar_painting.h"

#include <algorithm>

namespace fleetwise {

void fillBar(QPainter& painter, const QRectF& bar, double share, const QColor& colour) {
    if (!(share > 0)) return;
    QRectF part = bar;
    part.setWidth(std::max(bar.height(), bar.width() * std::min(share, 1.0)));
    painter.setPen(Qt::NoPen);
    painter.setBrush(colour);
    painter.drawRoundedRect(part, bar.height() / 2, bar.height() / 2);
}

}  // namespace fleetwise
