#include "ui/settings/state_icon.h"

#include "ui/base/state_glyph.h"
#include "ui/base/theme.h"

#include <QPainter>
#include <QPixmap>
#include <QWidget>

namespace fleetwise {

QIcon stateIcon(SessionState state, const QWidget& owner) {
    const double scale = owner.devicePixelRatioF();
    QPixmap image(QSize(Metrics::glyphSide, Metrics::glyphSide) * scale);
    image.setDevicePixelRatio(scale);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    paintStateGlyph(painter, QRectF(0, 0, Metrics::glyphSide, Metrics::glyphSide), state,
                    stateColour(state, appearanceOf(owner.palette())));
    return image;
}

}  // namespace fleetwise
