#include "ui/usage/pin_button.h"

#include "ui/base/drawing_box.h"
#include "ui/base/interface_text.h"
#include "ui/base/theme.h"

#include <QPainter>

namespace fleetwise {

namespace {

constexpr double pinUnits = 14;

}  // namespace

PinButton::PinButton(QWidget* parent) : ChipButton({}, parent) {
    setToolTip(shown("Über anderen Fenstern halten"_text));
    setAccessibleName(toolTip());
}

QSize PinButton::sizeHint() const {
    const int height = ChipButton::sizeHint().height();
    return {height + Metrics::gap, height};
}

void PinButton::paintEvent(QPaintEvent* event) {
    ChipButton::paintEvent(event);
    const Palette colours = paletteOf(palette());
    QPainter painter(this);
    const double side = fontMetrics().height();
    const QRectF area(width() / 2.0 - side / 2, height() / 2.0 - side / 2, side, side);
    const DrawingBox box(painter, area, pinUnits, colours.text);
    const QPainterPath head =
        polygon({{5, 1.5}, {9, 1.5}, {9, 5.5}, {11, 8.5}, {3, 8.5}, {5, 5.5}});
    box.stroke(polyline({{7, 8.5}, {7, 12.8}}), 1.3);
    if (isChecked()) box.fill(head);
    QPainterPath outline = head;
    outline.closeSubpath();
    box.stroke(outline, 1.3);
}

}  // namespace fleetwise
