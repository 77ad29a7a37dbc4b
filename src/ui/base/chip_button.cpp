#include "ui/base/chip_button.h"

#include "ui/base/theme.h"

#include <QPainter>

namespace fleetwise {

namespace {

constexpr float checkedStrength = 0.2F;
constexpr double chipFocusWidth = 1.5;

}  // namespace

ChipButton::ChipButton(const QString& text, QWidget* parent) : QToolButton(parent) {
    setText(text);
    setCheckable(true);
    setFocusPolicy(Qt::StrongFocus);
}

QSize ChipButton::sizeHint() const {
    const QFontMetrics metrics(font());
    return {metrics.horizontalAdvance(text()) + 2 * Metrics::margin,
            metrics.height() + Metrics::gap + Metrics::grid};
}

void ChipButton::paintEvent(QPaintEvent*) {
    const Palette colours = paletteOf(palette());
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    QColor fill = underMouse() ? colours.hover : colours.ground;
    if (isChecked()) {
        fill = colours.accent;
        fill.setAlphaF(checkedStrength);
    }
    const bool isMarked = isChecked() || hasFocus();
    painter.setPen(
        QPen(isMarked ? colours.accent : colours.hairline, hasFocus() ? chipFocusWidth : 1));
    painter.setBrush(fill);
    painter.drawRoundedRect(QRectF(rect()).adjusted(0.75, 0.75, -0.75, -0.75), Metrics::rowRadius,
                            Metrics::rowRadius);
    painter.setPen(colours.text);
    painter.drawText(rect(), Qt::AlignCenter, text());
}

}  // namespace fleetwise
