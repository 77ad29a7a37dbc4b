#include "ui/fleet/row_geometry.h"

#include "ui/base/theme.h"

#include <algorithm>

namespace fleetwise {

namespace {

constexpr int compactHeight = 30;
constexpr int comfortableHeight = 54;
constexpr int lowestHeading = 40;
constexpr int barWidth = 48;
constexpr int contextBarHeight = 4;
constexpr int lineGap = 3;
constexpr int leastActionSide = 22;

constexpr int narrowRow = 480;  ///< below it only what tells sessions apart
constexpr int wideRow = 900;    ///< from it on a compact row has room for its origin

/// Cuts parts off a row's right end.
class RightEnd {
public:
    explicit RightEnd(const QRect& givenLine) : line(givenLine) {}

    QRect take(int width, int height) {
        const QRect part(line.right() + 1 - width, line.center().y() - height / 2, width, height);
        line.setRight(part.left() - 1 - Metrics::gap);
        return part;
    }

    QRect line;  ///< what is left
};

QRect middle(const QRect& line, int height) {
    return {line.left(), line.center().y() - height / 2, std::max(0, line.width()), height};
}

RowGeometry compactGeometry(RowGeometry geometry, const QRect& content, const RowTextSizes& sizes) {
    const int width = content.width();
    RightEnd end(content);
    geometry.time = end.take(sizes.timeWidth, sizes.lineHeight);
    if (sizes.costWidth > 0 && width >= narrowRow + sizes.costWidth) {
        geometry.cost = end.take(sizes.costWidth, sizes.lineHeight);
    }
    geometry.bar = end.take(barWidth, contextBarHeight);
    if (width >= wideRow) geometry.origin = end.take(width * 18 / 100, sizes.lineHeight);
    if (width >= narrowRow) geometry.place = end.take(width * 20 / 100, sizes.lineHeight);
    const QRect rest = middle(end.line, sizes.lineHeight);
    const int nameWidth = width >= narrowRow ? rest.width() * 42 / 100 : rest.width();
    geometry.name = QRect(rest.left(), rest.top(), nameWidth, rest.height());
    if (width >= narrowRow) {
        geometry.detail = rest.adjusted(nameWidth + Metrics::gap, 0, 0, 0);
    }
    return geometry;
}

RowGeometry comfortableGeometry(RowGeometry geometry, const QRect& content,
                                const RowTextSizes& sizes) {
    const int width = content.width();
    const int texts = sizes.lineHeight + lineGap + sizes.smallLineHeight;
    const int top = content.top() + std::max(0, (content.height() - texts) / 2);
    const QRect upper(content.left(), top, width, sizes.lineHeight);
    const QRect lower(content.left(), upper.bottom() + 1 + lineGap, width, sizes.smallLineHeight);
    RightEnd upperEnd(upper);
    geometry.time = upperEnd.take(sizes.timeWidth, sizes.lineHeight);
    geometry.place = upperEnd.take(width * (width < narrowRow ? 24 : 30) / 100, sizes.lineHeight);
    geometry.name = upperEnd.line;
    RightEnd lowerEnd(lower);
    if (sizes.costWidth > 0) geometry.cost = lowerEnd.take(sizes.costWidth, lower.height());
    geometry.bar = lowerEnd.take(barWidth, contextBarHeight);
    if (width >= narrowRow) geometry.origin = lowerEnd.take(width * 26 / 100, lower.height());
    geometry.detail = lowerEnd.line;
    return geometry;
}

}  // namespace

Density densityFrom(std::string_view raw) {
    return raw == "comfortable" ? Density::comfortable : Density::compact;
}

std::string_view rawValue(Density density) {
    return density == Density::comfortable ? "comfortable" : "compact";
}

int rowHeight(Density density, const RowTextSizes& sizes) {
    if (density == Density::compact)
        return std::max(compactHeight, sizes.lineHeight + Metrics::gap);
    return std::max(comfortableHeight,
                    sizes.lineHeight + sizes.smallLineHeight + 2 * Metrics::gap + Metrics::grid);
}

int headingHeight(const RowTextSizes& sizes) {
    return std::max(lowestHeading, sizes.lineHeight + Metrics::groupGap + Metrics::gap);
}

RowGeometry rowGeometry(const QRect& row, Density density, const RowTextSizes& sizes) {
    const QRect inner = row.adjusted(Metrics::margin, 0, -Metrics::margin, 0);
    RowGeometry geometry;
    geometry.glyph = QRect(inner.left(), inner.center().y() - Metrics::glyphSide / 2,
                           Metrics::glyphSide, Metrics::glyphSide);
    const QRect content = inner.adjusted(Metrics::glyphSide + Metrics::gap, 0, 0, 0);
    if (density == Density::compact) return compactGeometry(geometry, content, sizes);
    geometry = comfortableGeometry(geometry, content, sizes);
    geometry.glyph.moveTop(geometry.name.center().y() - Metrics::glyphSide / 2);
    return geometry;
}

RowActions rowActions(const QRect& row, const RowTextSizes& sizes) {
    const int side = std::min(std::max(leastActionSide, sizes.lineHeight + Metrics::grid),
                              row.height() - Metrics::grid);
    const QRect inner = row.adjusted(Metrics::margin, 0, -Metrics::margin, 0);
    RightEnd end(inner);
    RowActions actions;
    actions.menu = end.take(side, side);
    actions.act = actions.menu.translated(-side - Metrics::grid, 0);
    return actions;
}

}  // namespace fleetwise
