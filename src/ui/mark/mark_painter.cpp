#include "ui/mark/mark_painter.h"

#include "ui/base/drawing_box.h"

#include <QFontMetricsF>
#include <QGuiApplication>
#include <QPixmap>

#include <algorithm>
#include <cmath>
#include <numbers>

namespace fleetwise {

namespace {

constexpr double smallestForTwoRings = 20;
constexpr int largestCount = 99;
constexpr int smallestPixelSize = 4;
constexpr int smallestLetters = 8;  ///< in pixels, where there are more than two
constexpr double tickPixels = 1.5;

struct Ring {
    double radius = 0;  ///< of the middle of the line
    double width = 0;
};

/// Everything in device pixels, the middle of the mark at (0, 0).
struct Layout {
    explicit Layout(double givenSide) : side(givenSide) {
        outer.width = std::max(2.0, std::round(side * 0.09));
        outer.radius = side / 2 - 0.5 - outer.width / 2;
        const double gap = std::max(1.0, std::round(side * 0.04));
        inner.width = std::max(1.5, side * 0.06);
        inner.radius = outer.radius - outer.width / 2 - gap - inner.width / 2;
        dotRadius = std::min(side * 0.17, side * 0.09 + 4);
        dotCentre = QPointF(side, -side) * 0.33;
        dotClearance = std::max(1.0, side * 0.05);
        hasTwoRings = side >= smallestForTwoRings;
    }

    double side = 0;
    Ring outer;
    Ring inner;
    double dotRadius = 0;
    QPointF dotCentre;
    double dotClearance = 0;
    bool hasTwoRings = false;
};

struct Colours {
    Colours(MarkStyle givenStyle, Appearance givenPanel)
        : style(givenStyle), panel(style == MarkStyle::badge ? Appearance::dark : givenPanel) {
        const Palette palette = paletteOf(panel, QPalette());
        text = palette.text;
        ground = palette.ground;
    }

    QColor of(SessionState state) const {
        return style == MarkStyle::symbolic ? text : stateColour(state, panel);
    }

    QColor quota(double used, SessionState usual) const {
        if (used >= 1) return of(SessionState::failed);
        return of(used >= warningShare ? SessionState::decision : usual);
    }

    QColor faded(double opacity) const {
        QColor colour = text;
        colour.setAlphaF(static_cast<float>(opacity));
        return colour;
    }

    MarkStyle style;
    Appearance panel;
    QColor text;
    QColor ground;  ///< of a badge
};

/// The part of the ring from noon clockwise, from one share of it to another.
QPainterPath arc(const Ring& ring, double from, double to) {
    const double outer = ring.radius + ring.width / 2;
    const double inner = ring.radius - ring.width / 2;
    const QRectF outerBox(-outer, -outer, 2 * outer, 2 * outer);
    const QRectF innerBox(-inner, -inner, 2 * inner, 2 * inner);
    if (to - from >= 1) return circle({}, outer).subtracted(circle({}, inner));
    QPainterPath path;
    path.arcMoveTo(outerBox, 90 - 360 * from);
    path.arcTo(outerBox, 90 - 360 * from, -360 * (to - from));
    path.arcTo(innerBox, 90 - 360 * to, 360 * (to - from));
    path.closeSubpath();
    return path;
}

/// A text as large as fits into a circle. Full hinting keeps the few pixels of its stems sharp.
struct FittedText {
    FittedText(const QString& text, double circleRadius) : font(QGuiApplication::font()) {
        const bool isSingle = text.size() == 1;
        const double room = circleRadius + (isSingle ? -0.8 : 0.3);
        font.setWeight(QFont::Bold);
        font.setHintingPreference(QFont::PreferFullHinting);
        if (!isSingle) font.setStretch(QFont::SemiCondensed);
        int size = static_cast<int>(circleRadius * 2.2);
        do {
            font.setPixelSize(size);
            box = QFontMetricsF(font).tightBoundingRect(text);
        } while (--size >= smallestPixelSize && std::hypot(box.width(), box.height()) > 2 * room);
    }

    QFont font;
    QRectF box;  ///< relative to where the text begins on its base line
};

class MarkDrawing {
public:
    MarkDrawing(QPainter& givenPainter, const MarkFigures& givenFigures, const Layout& givenLayout,
                const Colours& givenColours)
        : painter(givenPainter),
          figures(givenFigures),
          layout(givenLayout),
          colours(givenColours) {}

    void draw() const {
        if (colours.style == MarkStyle::badge) fill(circle({}, layout.side / 2), colours.ground);
        drawRings();
        drawCentre();
        if (figures.needsAttention) {
            painter.fillPath(circle(layout.dotCentre, layout.dotRadius),
                             colours.of(SessionState::waiting));
        }
    }

private:
    void fill(const QPainterPath& path, const QColor& colour) const {
        if (!figures.needsAttention) return painter.fillPath(path, colour);
        const auto hole = circle(layout.dotCentre, layout.dotRadius + layout.dotClearance);
        painter.fillPath(path.subtracted(hole), colour);
    }

    void drawRing(const Ring& ring, double used, SessionState usual) const {
        const double share = std::clamp(used, 0.0, 1.0);
        if (share < 1) fill(arc(ring, share, 1), colours.faded(0.25));
        if (share > 0) fill(arc(ring, 0, share), colours.quota(used, usual));
    }

    void drawRings() const {
        const auto& outer = figures.fiveHour;
        const auto& inner = figures.sevenDay;
        if (!outer && !inner) return fill(arc(layout.outer, 0, 1), colours.faded(0.5));
        if (!layout.hasTwoRings || !inner) {
            drawRing(layout.outer, std::max(outer.value_or(0), inner.value_or(0)),
                     SessionState::working);
        } else {
            drawRing(layout.outer, outer.value_or(0), SessionState::working);
            drawRing(layout.inner, *inner, SessionState::scheduled);
        }
        if (figures.working && figures.resetShare) drawTick(*figures.resetShare);
    }

    void drawTick(double share) const {
        const double half = tickPixels / layout.outer.radius / (4 * std::numbers::pi);
        painter.fillPath(arc(layout.outer, share - half, share + half), colours.text);
    }

    void drawCentre() const {
        if (figures.working == 0) {
            return painter.fillPath(circle({}, layout.outer.width * 0.75), colours.faded(0.5));
        }
        if (figures.working) {
            drawText(QString::number(std::clamp(*figures.working, 0, largestCount)));
        } else if (figures.reset) {
            drawText(QString::fromStdString(*figures.reset).remove(' '));
        }
    }

    /// Letters that would be too small to read are left out: 45m becomes 45.
    void drawText(QString text) const {
        const Ring& ring = layout.hasTwoRings && figures.sevenDay ? layout.inner : layout.outer;
        const double room = ring.radius - ring.width / 2;
        FittedText fitted(text, room);
        while (text.size() > 2 && fitted.font.pixelSize() < smallestLetters) {
            text.chop(1);
            fitted = FittedText(text, room);
        }
        const QPointF middle = fitted.box.center();
        painter.setFont(fitted.font);
        painter.setPen(colours.text);
        painter.drawText(QPointF(std::round(-middle.x()), std::round(-middle.y())), text);
    }

    QPainter& painter;
    const MarkFigures& figures;
    const Layout& layout;
    const Colours& colours;
};

}  // namespace

void paintMark(QPainter& painter, const QRectF& area, const MarkFigures& figures, MarkStyle style,
               Appearance panel) {
    const double side =
        std::min(area.width(), area.height()) * std::abs(painter.deviceTransform().m11());
    const Colours colours(style, panel);
    const DrawingBox box(painter, area, side, colours.text);
    painter.translate(side / 2, side / 2);
    MarkDrawing(painter, figures, Layout(side), colours).draw();
}

QIcon markIcon(const MarkFigures& figures, MarkStyle style, Appearance panel) {
    QIcon icon;
    for (const int side : {16, 22, 24, 32, 44, 48, 64, 96}) {
        QPixmap pixmap(side, side);
        pixmap.fill(Qt::transparent);
        QPainter painter(&pixmap);
        paintMark(painter, pixmap.rect(), figures, style, panel);
        painter.end();
        icon.addPixmap(pixmap);
    }
    return icon;
}

}  // namespace fleetwise
