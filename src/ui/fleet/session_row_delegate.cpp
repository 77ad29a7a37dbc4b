#include "ui/fleet/session_row_delegate.h"

#include "fleet/cost_texts.h"
#include "localisation/duration_format.h"
#include "ui/base/agent_symbol.h"
#include "ui/base/drawing_box.h"
#include "ui/base/interface_text.h"
#include "ui/base/state_glyph.h"
#include "ui/base/theme.h"
#include "ui/fleet/fleet_list_model.h"
#include "ui/fleet/row_action_painting.h"

#include <QFontMetrics>
#include <QPainter>

#include <algorithm>
#include <cmath>
#include <numbers>
#include <optional>
#include <vector>

namespace fleetwise {

namespace {

constexpr double selectionStrength = 0.16;
constexpr int roomForBranch = 130;
constexpr int roomForPath = 180;
constexpr int chipPadding = 5;
constexpr double chipEdgeStrength = 0.4;
constexpr double chipFillStrength = 0.22;
constexpr int chevronSide = 10;
constexpr int starSide = 12;
constexpr int symbolSide = 12;
constexpr auto separator = " · ";

/// Rarely is one longer, and then it closes its gaps.
QString longestUsualAmount() {
    return qtText(costText({.usd = 888.88, .isEstimated = true}));
}

QColor faded(QColor colour, double strength) {
    colour.setAlphaF(static_cast<float>(strength));
    return colour;
}

/// `row` is the part of the item that belongs to it: a heading keeps its distance to what is above.
void paintGround(QPainter& painter, const QStyleOptionViewItem& option, const QRect& row,
                 const Palette& palette) {
    const bool isSelected = option.state.testFlag(QStyle::State_Selected);
    const bool isHovered = option.state.testFlag(QStyle::State_MouseOver);
    const bool hasFocus = option.state.testFlag(QStyle::State_HasFocus);
    if (!isSelected && !isHovered && !hasFocus) return;
    const QRectF area = QRectF(row).adjusted(4, 1, -4, -1);
    painter.setPen(hasFocus ? QPen(palette.accent, 1.5) : QPen(Qt::NoPen));
    painter.setBrush(Qt::NoBrush);
    if (isHovered) painter.setBrush(palette.hover);
    if (isSelected) painter.setBrush(faded(palette.accent, selectionStrength));
    painter.drawRoundedRect(area, Metrics::rowRadius, Metrics::rowRadius);
}

enum class Elide { end, middle };

/// Writes on one line and gives the width it took.
int write(QPainter& painter, const QRect& area, const QString& text, const QColor& colour,
          Qt::Alignment side = Qt::AlignLeft, Elide elide = Elide::end) {
    if (area.width() <= 0 || text.isEmpty()) return 0;
    const QFontMetrics metrics(painter.font());
    const QString fitting = metrics.elidedText(
        text, elide == Elide::end ? Qt::ElideRight : Qt::ElideMiddle, area.width());
    painter.setPen(colour);
    painter.drawText(area, static_cast<int>(side | Qt::AlignVCenter) | Qt::TextSingleLine, fitting);
    return metrics.horizontalAdvance(fitting);
}

QString joined(const QStringList& parts) {
    QStringList filled;
    for (const QString& part : parts) {
        if (!part.isEmpty()) filled << part;
    }
    return filled.join(QString::fromUtf8(separator));
}

/// As much of where a session works as the width has room for.
QString placeText(const SessionRow& row, int width) {
    if (width < roomForBranch) return row.project;
    return joined({width < roomForPath ? row.project : row.path, row.branch});
}

struct Chip {
    QString text;
    std::optional<double> share;  ///< of it that is filled, where it shows progress
};

/// Those of a row, the goal first: it falls away last.
std::vector<Chip> chipsOf(const SessionRow& row) {
    std::vector<Chip> chips;
    if (!row.goal.isEmpty()) chips.push_back({row.goal, row.goalShare});
    for (const QString& badge : row.badges)
        chips.push_back({badge, {}});
    return chips;
}

/// The first of the chips that fit side by side, and the room they take.
struct Chips {
    std::vector<Chip> chips;
    int width = 0;
};

int chipWidth(const QString& text, const QFontMetrics& metrics) {
    return metrics.horizontalAdvance(text) + 2 * chipPadding;
}

Chips fittingChips(const std::vector<Chip>& all, const QFontMetrics& metrics, int room) {
    Chips fitting;
    for (const Chip& chip : all) {
        const int width = fitting.width + Metrics::gap + chipWidth(chip.text, metrics);
        if (width > room) break;
        fitting.chips.push_back(chip);
        fitting.width = width;
    }
    return fitting;
}

/// Grows from the left with the share, within the outline.
void paintProgress(QPainter& painter, const QRectF& outline, double share, const Palette& palette) {
    painter.save();
    painter.setClipRect(
        QRectF(outline.topLeft(),
               QSizeF(outline.width() * std::clamp(share, 0.0, 1.0), outline.height())),
        Qt::IntersectClip);
    painter.setPen(Qt::NoPen);
    painter.setBrush(faded(palette.secondary, chipFillStrength));
    painter.drawRoundedRect(outline, Metrics::grid, Metrics::grid);
    painter.restore();
}

void paintChips(QPainter& painter, QPoint place, int height, const std::vector<Chip>& chips,
                const Palette& palette) {
    for (const Chip& chip : chips) {
        const QRect area(place, QSize(chipWidth(chip.text, painter.fontMetrics()), height));
        const QRectF outline = QRectF(area).adjusted(0.5, 0.5, -0.5, -0.5);
        if (chip.share) paintProgress(painter, outline, *chip.share, palette);
        painter.setPen(faded(palette.secondary, chipEdgeStrength));
        painter.setBrush(Qt::NoBrush);
        painter.drawRoundedRect(outline, Metrics::grid, Metrics::grid);
        // The secondary colour would not stand out from the filled part.
        painter.setPen(chip.share ? palette.text : palette.secondary);
        painter.drawText(area, Qt::AlignCenter, chip.text);
        place.rx() += area.width() + Metrics::grid;
    }
}

void paintBar(QPainter& painter, const QRect& area, double fill, const Palette& palette) {
    const double radius = area.height() / 2.0;
    painter.setPen(Qt::NoPen);
    painter.setBrush(palette.hairline);
    painter.drawRoundedRect(area, radius, radius);
    QRectF filled = area;
    filled.setWidth(std::clamp(fill, 0.0, 1.0) * area.width());
    if (filled.width() < 1) return;
    painter.setBrush(fill >= warningShare ? palette.warning : palette.secondary);
    painter.drawRoundedRect(filled, radius, radius);
}

void paintStar(QPainter& painter, const QRectF& area, const QColor& colour) {
    const DrawingBox box(painter, area, starSide, colour);
    QPainterPath star;
    for (int corner = 0; corner < 10; ++corner) {
        const double radius = corner % 2 == 0 ? 5.6 : 2.4;
        const double angle = corner * std::numbers::pi / 5;
        const QPointF point(6 + radius * std::sin(angle), 6.4 - radius * std::cos(angle));
        corner == 0 ? star.moveTo(point) : star.lineTo(point);
    }
    star.closeSubpath();
    box.fill(star);
}

void paintChevron(QPainter& painter, const QRectF& area, bool isFolded, const QColor& colour) {
    const DrawingBox box(painter, area, chevronSide, colour);
    box.stroke(isFolded ? polyline({{3.5, 1.5}, {7, 5}, {3.5, 8.5}})
                        : polyline({{1.5, 3.5}, {5, 7}, {8.5, 3.5}}),
               1.5);
}

void paintName(QPainter& painter, const QRect& area, const SessionRow& row, const QFont& font,
               const Palette& palette) {
    painter.setFont(demandsAttention(row.state) ? emphasisedFont(font) : font);
    const bool rests = row.state == SessionState::dormant;
    const int starRoom = row.isFavorite ? starSide + Metrics::grid : 0;
    const int width = write(painter, area.adjusted(0, 0, -starRoom, 0), row.name,
                            rests ? palette.secondary : palette.text);
    if (!row.isFavorite) return;
    paintStar(painter,
              QRectF(area.left() + width + Metrics::grid, area.center().y() - starSide / 2.0 + 0.5,
                     starSide, starSide),
              palette.secondary);
}

void paintCost(QPainter& painter, const QRect& area, QString cost, const Palette& palette) {
    const bool fits = painter.fontMetrics().horizontalAdvance(cost) <= area.width();
    if (!fits) cost.remove(u' ');
    write(painter, area, cost, palette.secondary, Qt::AlignRight);
}

void paintOrigin(QPainter& painter, const QRect& area, const SessionRow& row,
                 const Palette& palette) {
    const int room = symbolSide + Metrics::grid;
    const int width = write(painter, area.adjusted(room, 0, 0, 0), joined({row.model, row.host}),
                            palette.secondary, Qt::AlignRight);
    const double left = area.right() + 1 - width - room;
    paintAgentSymbol(
        painter, QRectF(left, area.center().y() - symbolSide / 2.0 + 0.5, symbolSide, symbolSide),
        row.agentSymbol.toStdString(), palette.secondary);
}

}  // namespace

RowTextSizes SessionRowDelegate::textSizes(const QFont& font) const {
    const QFontMetrics body(font);
    const QFontMetrics small(smallFont(font));
    const QString longestTime = qtText(durationText(std::chrono::minutes(23 * 60 + 58)));
    RowTextSizes sizes{.lineHeight = body.height(),
                       .smallLineHeight = small.height(),
                       .timeWidth = small.horizontalAdvance(longestTime) + 1};
    if (tellsCosts) {
        sizes.costWidth = small.horizontalAdvance(longestUsualAmount()) + 1;
    }
    return sizes;
}

void SessionRowDelegate::paint(QPainter* painter, const QStyleOptionViewItem& option,
                               const QModelIndex& index) const {
    const QRect touched = painted.intersected(option.rect).boundingRect();
    if (touched.isEmpty()) return;
    const auto row = index.data(FleetListModel::rowRole).value<SessionRow>();
    painter->save();
    painter->setRenderHint(QPainter::Antialiasing);
    QStyleOptionViewItem filled = option;
    initStyleOption(&filled, index);
    const int gap = row.kind == SessionRow::Kind::heading ? Metrics::groupGap - Metrics::grid : 0;
    paintGround(*painter, filled, filled.rect.adjusted(0, gap, 0, 0), paletteOf(filled.palette));
    if (row.kind == SessionRow::Kind::heading) {
        paintHeading(*painter, filled, row);
    } else {
        paintSession(*painter, filled, row, touched);
    }
    painter->restore();
}

void SessionRowDelegate::paintHeading(QPainter& painter, const QStyleOptionViewItem& option,
                                      const SessionRow& row) const {
    const Palette palette = paletteOf(option.palette);
    const QFont font = headingFont(option.font);
    const int height = QFontMetrics(font).height();
    QRect line(option.rect.left() + Metrics::margin, option.rect.bottom() - height - Metrics::grid,
               option.rect.width() - 2 * Metrics::margin, height);
    const QRectF chevron(line.left() + (Metrics::glyphSide - chevronSide) / 2.0,
                         line.center().y() - chevronSide / 2.0 + 0.5, chevronSide, chevronSide);
    paintChevron(painter, chevron, row.isFolded, palette.secondary);
    line.adjust(Metrics::glyphSide + Metrics::gap, 0, 0, 0);
    painter.setFont(font);
    line.adjust(write(painter, line, row.name, palette.text) + Metrics::gap, 0, 0, 0);
    painter.setFont(smallFont(option.font));
    if (!row.cost.isEmpty()) {
        // A sum stands in the column of what it is of.
        const QRect column = rowGeometry(option.rect, rowDensity, textSizes(option.font)).cost;
        if (!column.isEmpty()) line.setRight(column.right());
        const int cost = write(painter, line, row.cost, palette.secondary, Qt::AlignRight);
        line.adjust(0, 0, -cost - Metrics::gap, 0);
    }
    const QString count = QString::number(row.count);
    line.adjust(write(painter, line, count, palette.secondary) + Metrics::groupGap, 0, 0, 0);
    write(painter, line, row.detail, palette.secondary, Qt::AlignLeft, Elide::middle);
}

void SessionRowDelegate::paintSession(QPainter& painter, const QStyleOptionViewItem& option,
                                      const SessionRow& row, const QRect& touched) const {
    const Palette palette = paletteOf(option.palette);
    const RowGeometry geometry = rowGeometry(option.rect, rowDensity, textSizes(option.font));
    paintStateGlyph(painter, geometry.glyph, row.state,
                    stateColour(row.state, appearanceOf(option.palette)), turn);
    if (geometry.glyph.contains(touched)) return;
    paintName(painter, geometry.name, row, option.font, palette);
    painter.setFont(smallFont(option.font));
    paintDetail(painter, geometry.detail, row, palette);
    const bool isHovered = option.state.testFlag(QStyle::State_MouseOver);
    const RowActions places = isHovered ? actionsOf(option, option.rect) : RowActions();
    paintRight(painter, geometry, places.area(), row, palette);
    if (!places.act.isEmpty()) {
        paintRowActions(painter, places, row.isLive, pointedAction, palette);
    }
}

void SessionRowDelegate::paintRight(QPainter& painter, const RowGeometry& geometry,
                                    const QRect& covered, const SessionRow& row,
                                    const Palette& palette) {
    const auto isFree = [&](const QRect& part) {
        return !part.isEmpty() && !part.intersects(covered);
    };
    if (isFree(geometry.place)) {
        write(painter, geometry.place, placeText(row, geometry.place.width()), palette.secondary,
              Qt::AlignRight, Elide::middle);
    }
    if (isFree(geometry.origin)) paintOrigin(painter, geometry.origin, row, palette);
    if (row.contextFill && isFree(geometry.bar)) {
        paintBar(painter, geometry.bar, *row.contextFill, palette);
    }
    if (isFree(geometry.cost)) paintCost(painter, geometry.cost, row.cost, palette);
    if (isFree(geometry.time)) {
        write(painter, geometry.time, row.elapsed, palette.secondary, Qt::AlignRight);
    }
}

void SessionRowDelegate::paintDetail(QPainter& painter, const QRect& area, const SessionRow& row,
                                     const Palette& palette) const {
    const bool warns = row.isNotice || row.isStale;
    const bool saysIt =
        row.state == SessionState::compacting || row.state == SessionState::waitingForSubagents;
    const bool hasLead = !row.isNotice && !saysIt && stateLabels == StateLabels::shown;
    const QString lead = hasLead ? row.stateLabel : QString();
    const bool rests = row.state == SessionState::dormant;
    const auto chips = fittingChips(chipsOf(row), painter.fontMetrics(), area.width() / 2);
    QRect rest = area.adjusted(0, 0, -chips.width, 0);
    rest.adjust(write(painter, rest, lead, rests ? palette.secondary : palette.text), 0, 0, 0);
    const QString dash = lead.isEmpty() || row.detail.isEmpty() ? "" : QString::fromUtf8(" — ");
    rest.adjust(
        write(painter, rest, dash + row.detail, warns ? palette.warning : palette.secondary), 0, 0,
        0);
    if (rest.left() > area.left()) rest.adjust(Metrics::gap, 0, 0, 0);
    paintChips(painter, rest.topLeft(), area.height(), chips.chips, palette);
}

QSize SessionRowDelegate::sizeHint(const QStyleOptionViewItem& option,
                                   const QModelIndex& index) const {
    const RowTextSizes sizes = textSizes(option.font);
    const bool isHeading = index.data(FleetListModel::headingRole).toBool();
    return {0, isHeading ? headingHeight(sizes) : rowHeight(rowDensity, sizes)};
}

QRect SessionRowDelegate::glyphRect(const QStyleOptionViewItem& option, const QRect& row) const {
    return rowGeometry(row, rowDensity, textSizes(option.font)).glyph;
}

RowActions SessionRowDelegate::actionsOf(const QStyleOptionViewItem& option,
                                         const QRect& row) const {
    return actions == Actions::shown ? rowActions(row, textSizes(option.font)) : RowActions();
}

}  // namespace fleetwise
