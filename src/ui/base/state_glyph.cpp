#include "ui/base/state_glyph.h"

#include "ui/base/drawing_box.h"

#include <cmath>
#include <numbers>

namespace fleetwise {

namespace {

constexpr double glyphSide = 14;
constexpr QPointF glyphCentre(glyphSide / 2, glyphSide / 2);

void paintDecision(const DrawingBox& box) {
    const QPainterPath diamond = polygon({{7, 1.2}, {12.8, 7}, {7, 12.8}, {1.2, 7}});
    box.fill(diamond);
    box.stroke(diamond, 1);
}

void paintWaiting(const DrawingBox& box) {
    QPainterPath bar;
    bar.addRoundedRect(QRectF(6, 3.5, 2, 7), 1, 1);
    box.fill(circle(glyphCentre, 6.4).subtracted(bar));
}

void paintFailed(const DrawingBox& box) {
    box.stroke(polyline({{2.7, 2.7}, {11.3, 11.3}}), 2.2);
    box.stroke(polyline({{11.3, 2.7}, {2.7, 11.3}}), 2.2);
}

void paintDone(const DrawingBox& box) {
    box.stroke(polyline({{1.8, 7.6}, {5.3, 11.1}, {12.2, 3.2}}), 2.2);
}

void paintWorking(const DrawingBox& box, double turn) {
    const QRectF ring(2, 2, 10, 10);
    QPainterPath arc;
    arc.arcMoveTo(ring, -360 * turn);
    arc.arcTo(ring, -360 * turn, 270);
    box.stroke(arc, 2);
}

void paintWaitingForSubagents(const DrawingBox& box) {
    QPainterPath dots;
    for (int third = 0; third < 3; ++third) {
        const double angle = (third / 3.0 - 0.25) * 2 * std::numbers::pi;
        dots.addEllipse(
            glyphCentre + QPointF(0, 0.8) + 4.2 * QPointF(std::cos(angle), std::sin(angle)), 2, 2);
    }
    box.fill(dots);
}

void paintCompacting(const DrawingBox& box) {
    box.fill(polygon({{6, 0.6}, {8, 0.6}, {8, 2.8}, {10.8, 2.8}, {7, 6.4}, {3.2, 2.8}, {6, 2.8}}));
    box.fill(
        polygon({{6, 13.4}, {8, 13.4}, {8, 11.2}, {10.8, 11.2}, {7, 7.6}, {3.2, 11.2}, {6, 11.2}}));
}

void paintIdle(const DrawingBox& box) {
    box.stroke(circle(glyphCentre, 4.75), 1.5);
}

void paintScheduled(const DrawingBox& box) {
    box.stroke(circle(glyphCentre, 5.75), 1.5);
    box.stroke(polyline({{7, 3.8}, {7, 7.2}, {9.4, 8.6}}), 1.4);
}

void paintUnknown(const DrawingBox& box) {
    QPainterPath hook(QPointF(4, 4.4));
    hook.cubicTo(4, 0.6, 10.2, 0.6, 10.2, 4.3);
    hook.cubicTo(10.2, 6.7, 7, 6.5, 7, 9);
    box.stroke(hook, 1.8);
    box.fill(circle({7, 12.1}, 1.15));
}

void paintDormant(const DrawingBox& box) {
    box.fill(circle(glyphCentre, 6).subtracted(circle({9.6, 5}, 5)));
}

}  // namespace

void paintStateGlyph(QPainter& painter, const QRectF& area, SessionState state,
                     const QColor& colour, double turn) {
    const DrawingBox box(painter, area, glyphSide, colour);
    switch (state) {
        case SessionState::decision:
            return paintDecision(box);
        case SessionState::waiting:
            return paintWaiting(box);
        case SessionState::failed:
            return paintFailed(box);
        case SessionState::done:
            return paintDone(box);
        case SessionState::working:
            return paintWorking(box, turn);
        case SessionState::waitingForSubagents:
            return paintWaitingForSubagents(box);
        case SessionState::compacting:
            return paintCompacting(box);
        case SessionState::idle:
            return paintIdle(box);
        case SessionState::scheduled:
            return paintScheduled(box);
        case SessionState::unknown:
            return paintUnknown(box);
        case SessionState::dormant:
            return paintDormant(box);
    }
}

}  // namespace fleetwise
