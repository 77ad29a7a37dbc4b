#include "ui/fleet/row_action_painting.h"

#include "ui/base/drawing_box.h"
#include "ui/base/theme.h"

#include <algorithm>

namespace fleetwise {

namespace {

constexpr double actionUnits = 14;
constexpr double actionSignShare = 0.6;  ///< of the button's side

QRectF signArea(const QRect& button) {
    QRectF area(0, 0, button.width() * actionSignShare, button.height() * actionSignShare);
    area.moveCenter(QRectF(button).center());
    return area;
}

void paintButton(QPainter& painter, const QRect& button, bool isPointed, const Palette& palette) {
    painter.setPen(isPointed ? palette.secondary : palette.hairline);
    painter.setBrush(palette.ground);
    painter.drawRoundedRect(QRectF(button).adjusted(0.5, 0.5, -0.5, -0.5), Metrics::grid,
                            Metrics::grid);
}

/// A window that comes to the front: an arrow out of a frame.
void paintFocusSign(const DrawingBox& box) {
    box.stroke(polyline({{6, 2.5}, {2.5, 2.5}, {2.5, 11.5}, {11.5, 11.5}, {11.5, 8}}), 1.3);
    box.stroke(polyline({{6.5, 7.5}, {11.8, 2.2}}), 1.3);
    box.stroke(polyline({{8.4, 2.2}, {11.8, 2.2}, {11.8, 5.6}}), 1.3);
}

void paintResumeSign(const DrawingBox& box) {
    box.fill(polygon({{4, 2.2}, {11.8, 7}, {4, 11.8}}));
}

void paintMenuSign(const DrawingBox& box) {
    for (const double x : {2.5, 7.0, 11.5})
        box.fill(circle({x, 7}, 1.3));
}

}  // namespace

void paintRowActions(QPainter& painter, const RowActions& places, bool isLive,
                     std::optional<RowAction> pointed, const Palette& palette) {
    const auto colourOf = [&](RowAction action) {
        return pointed == action ? palette.text : palette.secondary;
    };
    paintButton(painter, places.act, pointed == RowAction::act, palette);
    paintButton(painter, places.menu, pointed == RowAction::menu, palette);
    {
        const DrawingBox box(painter, signArea(places.act), actionUnits, colourOf(RowAction::act));
        isLive ? paintFocusSign(box) : paintResumeSign(box);
    }
    const DrawingBox box(painter, signArea(places.menu), actionUnits, colourOf(RowAction::menu));
    paintMenuSign(box);
}

}  // namespace fleetwise
