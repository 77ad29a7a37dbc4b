#include "ui/archive/archive_header.h"

#include "ui/archive/archive_row_delegate.h"
#include "ui/base/theme.h"

#include <QPainter>
#include <QPainterPath>

namespace fleetwise {

namespace {

constexpr double orderWidth = 7;
constexpr double orderHeight = 4;

void paintOrder(QPainter& painter, const QPointF& middle, Qt::SortOrder order,
                const QColor& colour) {
    const double tip = order == Qt::AscendingOrder ? -orderHeight / 2 : orderHeight / 2;
    QPainterPath arrow(middle + QPointF(0, tip));
    arrow.lineTo(middle + QPointF(-orderWidth / 2, -tip));
    arrow.lineTo(middle + QPointF(orderWidth / 2, -tip));
    painter.fillPath(arrow, colour);
}

}  // namespace

ArchiveHeader::ArchiveHeader(QWidget* parent) : QHeaderView(Qt::Horizontal, parent) {
    setSectionsClickable(true);
    setSectionResizeMode(QHeaderView::Fixed);
    setSortIndicatorShown(true);
}

QSize ArchiveHeader::sizeHint() const {
    return {QHeaderView::sizeHint().width(),
            QFontMetrics(smallFont(font())).height() + Metrics::gap + Metrics::grid};
}

void ArchiveHeader::paintSection(QPainter* painter, const QRect& area, int section) const {
    const Palette colours = paletteOf(palette());
    painter->save();
    painter->setRenderHint(QPainter::Antialiasing);
    painter->setFont(smallFont(font()));
    painter->fillRect(area, colours.ground);
    painter->fillRect(QRect(area.left(), area.bottom(), area.width(), 1), colours.hairline);
    const QRect room = ArchiveRowDelegate::contentArea(area, section);
    const QString text = model()->headerData(section, Qt::Horizontal).toString();
    const int alignment =
        model()->headerData(section, Qt::Horizontal, Qt::TextAlignmentRole).toInt();
    const bool isSorted = section == sortIndicatorSection();
    painter->setPen(isSorted ? colours.text : colours.secondary);
    painter->drawText(room, alignment | Qt::TextSingleLine, text);
    if (isSorted) {
        const double width = painter->fontMetrics().horizontalAdvance(text);
        const double distance = Metrics::grid + orderWidth / 2;
        const double x = (alignment & Qt::AlignRight) != 0 ? room.right() + 1 - width - distance
                                                           : room.left() + width + distance;
        paintOrder(*painter, QPointF(x, room.center().y() + 1), sortIndicatorOrder(),
                   colours.secondary);
    }
    painter->restore();
}

}  // namespace fleetwise
