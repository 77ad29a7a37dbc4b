#include "ui/settings/switch_box.h"

#include "ui/base/theme.h"

#include <QPainter>

#include <algorithm>

namespace fleetwise {

namespace {

constexpr double switchShape = 1.75;  ///< width to height
constexpr double switchFocusLine = 2;
constexpr double switchEdge = switchFocusLine / 2;
constexpr double switchKnobGap = 3;

}  // namespace

SwitchBox::SwitchBox(const QString& text, QWidget* parent) : QCheckBox(text, parent) {
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
}

QSize SwitchBox::sizeHint() const {
    const double height = std::max<double>(Metrics::groupGap, fontMetrics().height());
    return QSizeF(height * switchShape + 2 * switchEdge, height + 2 * switchEdge).toSize();
}

bool SwitchBox::hitButton(const QPoint& position) const {
    return rect().contains(position);
}

void SwitchBox::paintEvent(QPaintEvent* /*event*/) {
    const Palette colours = paletteOf(palette());
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    if (!isEnabled()) painter.setOpacity(0.5);
    const QRectF track = QRectF(rect()).adjusted(switchEdge, switchEdge, -switchEdge, -switchEdge);
    const double radius = track.height() / 2;
    QPen outline(isChecked() ? colours.accent : colours.secondary, 1);
    if (hasFocus()) outline = QPen(colours.text, switchFocusLine);
    painter.setPen(outline);
    painter.setBrush(isChecked() ? colours.accent : colours.hover);
    painter.drawRoundedRect(track, radius, radius);
    const bool isRight = isChecked() == (layoutDirection() == Qt::LeftToRight);
    const QPointF knob(isRight ? track.right() - radius : track.left() + radius,
                       track.center().y());
    painter.setPen(Qt::NoPen);
    painter.setBrush(isChecked() ? colours.accentText : colours.secondary);
    painter.drawEllipse(knob, radius - switchKnobGap, radius - switchKnobGap);
}

}  // namespace fleetwise
