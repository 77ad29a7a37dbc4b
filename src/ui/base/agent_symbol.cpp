#include "ui/base/agent_symbol.h"

#include "ui/base/drawing_box.h"
#include "ui/base/state_glyph.h"

#include <array>

namespace fleetwise {

namespace {

constexpr double symbolSide = 14;
constexpr double line = 1.4;

/// A star of four points, its sides curved inwards.
QPainterPath star(const QPointF& centre, double radius) {
    const double waist = radius * 0.16;
    const QPointF up(0, -radius), right(radius, 0);
    QPainterPath path(centre + up);
    path.quadTo(centre + QPointF(waist, -waist), centre + right);
    path.quadTo(centre + QPointF(waist, waist), centre - up);
    path.quadTo(centre + QPointF(-waist, waist), centre - right);
    path.quadTo(centre + QPointF(-waist, -waist), centre + up);
    return path;
}

void paintSparkle(const DrawingBox& box) {
    box.fill(star({7, 7}, 6.5));
}

void paintCode(const DrawingBox& box) {
    box.stroke(polyline({{4, 3.5}, {0.9, 7}, {4, 10.5}}), line);
    box.stroke(polyline({{10, 3.5}, {13.1, 7}, {10, 10.5}}), line);
    box.stroke(polyline({{8.2, 2.6}, {5.8, 11.4}}), line);
}

void paintDiamond(const DrawingBox& box) {
    box.stroke(polygon({{7, 1.2}, {11.6, 7}, {7, 12.8}, {2.4, 7}}), line);
}

void paintArrow(const DrawingBox& box) {
    box.stroke(polygon({{2.4, 1.8}, {12.2, 6.2}, {8, 8}, {6.2, 12.2}}), line);
}

void paintWand(const DrawingBox& box) {
    box.stroke(polyline({{1.6, 12.4}, {7.4, 6.6}}), 1.8);
    box.fill(star({10, 4}, 3.6));
    box.fill(star({4, 3.4}, 1.9));
    box.fill(star({11.2, 10.6}, 1.9));
}

void paintChip(const DrawingBox& box) {
    box.stroke(polygon({{3.5, 3.5}, {10.5, 3.5}, {10.5, 10.5}, {3.5, 10.5}}), line);
    for (const double at : {5.5, 8.5}) {
        box.stroke(polyline({{at, 1}, {at, 2.8}}), 1);
        box.stroke(polyline({{at, 11.2}, {at, 13}}), 1);
        box.stroke(polyline({{1, at}, {2.8, at}}), 1);
        box.stroke(polyline({{11.2, at}, {13, at}}), 1);
    }
}

struct Drawing {
    std::string_view symbol;
    void (*paint)(const DrawingBox& box);
};

constexpr std::array<Drawing, 6> drawings{{
    {"sparkle", paintSparkle},
    {"chevron.left.forwardslash.chevron.right", paintCode},
    {"diamond", paintDiamond},
    {"cursorarrow", paintArrow},
    {"wand.and.stars", paintWand},
    {"cpu", paintChip},
}};

}  // namespace

void paintAgentSymbol(QPainter& painter, const QRectF& area, std::string_view symbol,
                      const QColor& colour) {
    for (const auto& drawing : drawings) {
        if (drawing.symbol != symbol) continue;
        return drawing.paint(DrawingBox(painter, area, symbolSide, colour));
    }
    paintStateGlyph(painter, area, SessionState::unknown, colour);
}

}  // namespace fleetwise
