#include "ui/charts/day_bars.h"

#include <QPainter>

#include <algorithm>
#include <cmath>
#include <numeric>

namespace fleetwise {

namespace {

constexpr int linesHigh = 11;
constexpr int leastLinesHigh = 8;
constexpr int leastCharacters = 26;
constexpr double barShare = 0.6;  ///< of a column's width
constexpr float quietOpacity = 0.7F;
constexpr double cornerRadius = 2;
constexpr double seam = 1;  ///< between two parts of a stack

}  // namespace

double DayBarsData::Bar::sum() const {
    return std::accumulate(parts.begin(), parts.end(), 0.0);
}

DayBars::DayBars(const QString& title, QWidget* parent) : ChartWidget(title, parent) {
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::MinimumExpanding);
}

void DayBars::setData(DayBarsData newData) {
    if (newData == data) return;
    data = std::move(newData);
    itemsChanged();
}

QSize DayBars::sizeHint() const {
    return {2 * minimumSizeHint().width(), linesHigh * labelHeight()};
}

QSize DayBars::minimumSizeHint() const {
    return {leastCharacters * QFontMetrics(labelFont()).averageCharWidth(),
            leastLinesHigh * labelHeight()};
}

QRectF DayBars::plot() const {
    const QFontMetricsF metrics(labelFont());
    double widest = 0;
    for (const auto& [value, label] : data.ticks)
        widest = std::max(widest, metrics.horizontalAdvance(label));
    return QRectF(rect()).adjusted(widest + 2 * Metrics::gap, labelHeight() / 2.0 + Metrics::grid,
                                   -Metrics::margin, -(labelHeight() + Metrics::margin));
}

QRectF DayBars::column(std::size_t item, const QRectF& plot) const {
    const double width = plot.width() / static_cast<double>(std::max<std::size_t>(1, itemCount()));
    return {plot.left() + width * static_cast<double>(item), plot.top(), width, plot.height()};
}

LinearScale DayBars::heights(const QRectF& plot) const {
    const double top = data.ticks.empty() ? 1 : data.ticks.back().first;
    return {0, top, plot.bottom(), plot.top()};
}

std::optional<std::size_t> DayBars::itemAt(const QPointF& place) const {
    const QRectF at = plot();
    if (data.bars.empty() || at.width() <= 0) return {};
    const double share = std::clamp((place.x() - at.left()) / at.width(), 0.0, 1.0);
    const auto item = static_cast<std::size_t>(share * static_cast<double>(itemCount()));
    return std::min(item, itemCount() - 1);
}

void DayBars::paintChart(QPainter& painter, const Palette& colours) {
    const QRectF at = plot();
    paintTicks(painter, colours, at);
    for (std::size_t item = 0; item < itemCount(); ++item)
        paintBar(painter, item, at);
    paintLabels(painter, colours, at);
}

void DayBars::paintTicks(QPainter& painter, const Palette& colours, const QRectF& plot) const {
    const LinearScale scale = heights(plot);
    std::vector<LabelSpan> spans;
    for (const auto& [value, label] : data.ticks) {
        const double y = scale.position(value);
        painter.setPen(QPen(colours.hairline, 1));
        const double sharp = std::floor(y) + 0.5;
        painter.drawLine(QPointF(plot.left(), sharp), QPointF(plot.right(), sharp));
        spans.push_back({y - labelHeight() / 2.0, y + labelHeight() / 2.0});
    }
    const auto fits = fittingLabels(spans, 0);
    painter.setPen(colours.secondary);
    for (std::size_t index = 0; index < spans.size(); ++index) {
        if (!fits[index]) continue;
        const QRectF place(0, spans[index].left, plot.left() - Metrics::gap, labelHeight());
        painter.drawText(place, Qt::AlignRight | Qt::AlignVCenter | Qt::TextDontClip,
                         data.ticks[index].second);
    }
}

void DayBars::paintBar(QPainter& painter, std::size_t item, const QRectF& plot) const {
    const LinearScale scale = heights(plot);
    const QRectF place = column(item, plot);
    const double width = std::max(1.0, place.width() * barShare);
    const Appearance appearance = appearanceOf(palette());
    const auto& parts = data.bars[item].parts;
    double below = 0;
    painter.setPen(Qt::NoPen);
    for (std::size_t index = 0; index < parts.size(); ++index) {
        if (!(parts[index] > 0)) continue;
        const bool isLowest = below == 0;
        const double top = scale.position(below + parts[index]);
        // Whatever was used at all shows.
        const double bottom = std::max(scale.position(below) - (isLowest ? 0 : seam), top + 1);
        below += parts[index];
        QColor colour = seriesColour(index, data.hasRest && index + 1 == parts.size(), appearance);
        if (marked() != item) colour.setAlphaF(quietOpacity);
        painter.setBrush(colour);
        const double height = bottom - top;
        const double radius = std::min({cornerRadius, height / 2, width / 2});
        painter.drawRoundedRect(QRectF(place.center().x() - width / 2, top, width, height), radius,
                                radius);
    }
}

void DayBars::paintLabels(QPainter& painter, const Palette& colours, const QRectF& plot) const {
    const QFontMetricsF metrics(labelFont());
    std::vector<LabelSpan> spans;
    for (std::size_t item = 0; item < itemCount(); ++item) {
        const double half = metrics.horizontalAdvance(data.bars[item].label) / 2;
        const double centre =
            std::clamp(column(item, plot).center().x(), half, std::max(half, width() - half - 1));
        // From the latest day backwards, and the marked one in any case.
        const int rank = marked() == item ? -1 : static_cast<int>(itemCount() - item);
        spans.push_back({centre - half, centre + half, rank});
    }
    const auto fits = fittingLabels(spans, Metrics::gap);
    for (std::size_t item = 0; item < itemCount(); ++item) {
        if (!fits[item]) continue;
        painter.setPen(marked() == item ? colours.text : colours.secondary);
        const QRectF place(spans[item].left, plot.bottom() + Metrics::gap,
                           spans[item].right - spans[item].left, labelHeight());
        painter.drawText(place, Qt::AlignCenter | Qt::TextDontClip, data.bars[item].label);
    }
}

}  // namespace fleetwise
