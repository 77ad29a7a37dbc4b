#include "ui/archive/archive_row_delegate.h"

#include "ui/archive/archive_model.h"
#include "ui/base/agent_symbol.h"
#include "ui/base/drawing_box.h"
#include "ui/base/interface_text.h"
#include "ui/base/state_glyph.h"
#include "ui/base/theme.h"

#include <QHeaderView>
#include <QPainter>
#include <QTableView>

namespace fleetwise {

namespace {

constexpr float selectedStrength = 0.16F;
constexpr double currentWidth = 1.5;
constexpr int rowSignSide = 12;
constexpr double originSide = 12;
constexpr double originLine = 1.1;

/// A prompt of a terminal, or the window of an application.
void paintOriginSign(QPainter& painter, const QRectF& area, SessionOrigin origin,
                     const QColor& colour) {
    const DrawingBox box(painter, area, originSide, colour);
    if (origin == SessionOrigin::cli) {
        box.stroke(polyline({{1.5, 3}, {4.5, 6}, {1.5, 9}}), originLine);
        box.stroke(polyline({{6, 9.2}, {10.5, 9.2}}), originLine);
    } else if (origin == SessionOrigin::desktop) {
        box.stroke(polygon({{1.2, 2}, {10.8, 2}, {10.8, 10}, {1.2, 10}}), originLine);
        box.stroke(polyline({{1.2, 4.4}, {10.8, 4.4}}), originLine);
    }
}

/// Writes on one line and gives where the text ends.
int writeLine(QPainter& painter, const QRect& area, const QString& text, const QColor& colour,
              int alignment) {
    if (area.width() <= 0) return area.left();
    const QString fitting = painter.fontMetrics().elidedText(text, Qt::ElideRight, area.width());
    painter.setPen(colour);
    painter.drawText(area, alignment | Qt::TextSingleLine, fitting);
    return area.left() + painter.fontMetrics().horizontalAdvance(fitting);
}

}  // namespace

ArchiveRowDelegate::ArchiveRowDelegate(const ArchiveModel& givenModel, QTableView& givenView)
    : QStyledItemDelegate(&givenView), model(givenModel), view(givenView) {}

int ArchiveRowDelegate::rowHeight(const QFontMetrics& metrics) {
    return metrics.height() + Metrics::gap + Metrics::grid;
}

QRect ArchiveRowDelegate::contentArea(const QRect& cell, int column) {
    const int left = column == ArchiveModel::nameColumn ? Metrics::margin : Metrics::gap;
    const int right = column + 1 == ArchiveModel::columnEnd ? Metrics::margin : Metrics::gap;
    return cell.adjusted(left, 0, -right, 0);
}

void ArchiveRowDelegate::paint(QPainter* painter, const QStyleOptionViewItem& option,
                               const QModelIndex& index) const {
    const Palette palette = paletteOf(option.palette);
    painter->save();
    painter->setRenderHint(QPainter::Antialiasing);
    painter->setFont(option.font);
    paintGround(*painter, option, index, palette);
    const QRect area = contentArea(option.rect, index.column());
    const ArchiveEntry* entry = model.entry(index);
    if (entry != nullptr && index.column() == ArchiveModel::nameColumn) {
        paintName(*painter, area, *entry, palette);
    } else {
        writeLine(*painter, area, index.data(Qt::DisplayRole).toString(), palette.secondary,
                  index.data(Qt::TextAlignmentRole).toInt());
    }
    painter->restore();
}

/// One ground for the whole row, of which each cell shows its part.
void ArchiveRowDelegate::paintGround(QPainter& painter, const QStyleOptionViewItem& option,
                                     const QModelIndex& index, const Palette& palette) const {
    // Over what the style has made of a selected row.
    painter.fillRect(option.rect, palette.ground);
    if (!option.state.testFlag(QStyle::State_Selected)) return;
    const QHeaderView& header = *view.horizontalHeader();
    QRect row = option.rect;
    row.setLeft(header.sectionViewportPosition(0));
    row.setWidth(header.length());
    const bool isCurrent = view.hasFocus() && view.currentIndex().row() == index.row();
    QColor fill = palette.accent;
    fill.setAlphaF(selectedStrength);
    painter.save();
    painter.setClipRect(option.rect);
    painter.setPen(isCurrent ? QPen(palette.accent, currentWidth) : QPen(Qt::NoPen));
    painter.setBrush(fill);
    painter.drawRoundedRect(QRectF(row).adjusted(Metrics::grid, 1, -Metrics::grid, -1),
                            Metrics::rowRadius, Metrics::rowRadius);
    painter.restore();
}

void ArchiveRowDelegate::paintName(QPainter& painter, const QRect& area, const ArchiveEntry& entry,
                                   const Palette& palette) const {
    QRect sign(area.left(), area.top(), rowSignSide, area.height());
    paintAgentSymbol(painter, sign, entry.agent.symbol(), palette.secondary);
    sign.translate(rowSignSide + Metrics::grid, 0);
    paintOriginSign(painter, sign, entry.origin, palette.secondary);
    sign.translate(rowSignSide + Metrics::gap, 0);
    if (const auto state = model.liveState(entry.id)) {
        paintStateGlyph(painter, sign, *state, stateColour(*state, appearanceOf(view.palette())));
        sign.translate(rowSignSide + Metrics::gap, 0);
    }
    QRect rest = area;
    rest.setLeft(sign.left());
    const int alignment = static_cast<int>(Qt::AlignLeft | Qt::AlignVCenter);
    const int end = writeLine(painter, rest, qtText(entry.displayName()), palette.text, alignment);
    if (entry.title.empty()) return;
    rest.setLeft(end + Metrics::margin);
    writeLine(painter, rest, qtText(entry.prompt), palette.secondary, alignment);
}

}  // namespace fleetwise
