#include "ui/base/search_field.h"

#include "ui/base/theme.h"

#include <QPainter>

namespace fleetwise {

namespace {

constexpr double fieldFocusWidth = 1.5;

}  // namespace

SearchField::SearchField(QWidget* parent) : QLineEdit(parent) {
    setFrame(false);
    setClearButtonEnabled(true);
    setTextMargins(Metrics::gap, Metrics::grid + 1, Metrics::gap, Metrics::grid + 1);
    QPalette transparent = palette();
    transparent.setColor(QPalette::Base, Qt::transparent);
    setPalette(transparent);
}

void SearchField::paintEvent(QPaintEvent* event) {
    const Palette colours = paletteOf(palette());
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(hasFocus() ? QPen(colours.accent, fieldFocusWidth) : QPen(colours.hairline));
    painter.setBrush(colours.ground);
    painter.drawRoundedRect(QRectF(rect()).adjusted(0.75, 0.75, -0.75, -0.75), Metrics::rowRadius,
                            Metrics::rowRadius);
    painter.end();
    QLineEdit::paintEvent(event);
}

}  // namespace fleetwise
