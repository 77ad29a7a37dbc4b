#include "ui/charts/rank_bars.h"

#include "ui/base/bar_painting.h"

#include <QPainter>

#include <algorithm>

namespace fleetwise {

namespace {

constexpr int barHeight = 6;
constexpr float quietOpacity = 0.7F;

}  // namespace

RankBars::RankBars(const QString& title, QWidget* parent) : ChartWidget(title, parent) {
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
}

void RankBars::setRows(std::vector<RankRow> newRows) {
    if (newRows == rows) return;
    rows = std::move(newRows);
    itemsChanged();
    updateGeometry();
}

int RankBars::rowHeight() const {
    return QFontMetrics(font()).height() + Metrics::grid + barHeight + Metrics::margin;
}

QSize RankBars::sizeHint() const {
    return {0, std::max(1, static_cast<int>(rows.size())) * rowHeight()};
}

std::optional<std::size_t> RankBars::itemAt(const QPointF& place) const {
    if (rows.empty() || place.y() < 0) return {};
    const auto item = static_cast<std::size_t>(place.y() / rowHeight());
    return item < rows.size() ? std::optional(item) : std::nullopt;
}

double RankBars::highest() const {
    double highest = 0;
    for (const RankRow& row : rows)
        highest = std::max(highest, row.value);
    return highest;
}

void RankBars::paintChart(QPainter& painter, const Palette& colours) {
    painter.setFont(font());
    const QFontMetrics metrics(font());
    const double most = highest();
    const int width = this->width() - 2 * Metrics::gap;
    for (std::size_t item = 0; item < rows.size(); ++item) {
        const RankRow& row = rows[item];
        const int top = static_cast<int>(item) * rowHeight() + Metrics::grid;
        const QRect line(Metrics::gap, top, width, metrics.height());
        const int figureWidth = metrics.horizontalAdvance(row.figure);
        const int nameWidth = std::max(0, line.width() - figureWidth - Metrics::groupGap);
        painter.setPen(colours.text);
        painter.drawText(line, Qt::AlignLeft | Qt::AlignVCenter,
                         metrics.elidedText(row.name, Qt::ElideMiddle, nameWidth));
        painter.drawText(line, Qt::AlignRight | Qt::AlignVCenter, row.figure);
        const QRectF bar(line.left(), line.bottom() + Metrics::grid, width, barHeight);
        fillBar(painter, bar, 1, colours.hairline);
        if (!(row.value > 0)) continue;
        QColor colour = colours.accent;
        // What is not marked stands back, but only on the ground of the bar's own colour.
        if (marked() && marked() != item) colour.setAlphaF(quietOpacity);
        fillBar(painter, bar, row.value / most, colour);
    }
}

}  // namespace fleetwise
