#include "ui/charts/chart_legend.h"

#include "ui/base/theme.h"
#include "ui/charts/chart_widget.h"

#include <QPainter>
#include <QStringList>

#include <algorithm>

namespace fleetwise {

namespace {

constexpr int swatchSide = 10;
constexpr int usualWidth = 400;

}  // namespace

ChartLegend::ChartLegend(QWidget* parent) : QWidget(parent) {
    QSizePolicy policy(QSizePolicy::Expanding, QSizePolicy::Minimum);
    policy.setHeightForWidth(true);
    setSizePolicy(policy);
}

void ChartLegend::setEntries(std::vector<Entry> newEntries, bool newHasRest) {
    if (newEntries == entries && newHasRest == hasRest) return;
    entries = std::move(newEntries);
    hasRest = newHasRest;
    QStringList words;
    for (const Entry& entry : entries)
        words << text(entry);
    setAccessibleName(words.join(QStringLiteral(", ")));
    updateGeometry();
    update();
}

QString ChartLegend::text(const Entry& entry) const {
    return entry.figure.isEmpty() ? entry.name : entry.name + u' ' + entry.figure;
}

std::vector<QRect> ChartLegend::places(int width) const {
    const QFontMetrics metrics(font());
    const int lineHeight = metrics.height() + Metrics::grid;
    std::vector<QRect> places;
    QPoint next(0, 0);
    for (const Entry& entry : entries) {
        const int needed = swatchSide + Metrics::gap + metrics.horizontalAdvance(text(entry));
        if (next.x() > 0 && next.x() + needed > width) next = {0, next.y() + lineHeight};
        places.emplace_back(next.x(), next.y(), std::min(needed, width), lineHeight);
        next.rx() += needed + Metrics::groupGap;
    }
    return places;
}

int ChartLegend::heightForWidth(int width) const {
    const auto all = places(width);
    return all.empty() ? 0 : all.back().bottom() + 1;
}

QSize ChartLegend::sizeHint() const {
    return {usualWidth, heightForWidth(usualWidth)};
}

QSize ChartLegend::minimumSizeHint() const {
    return {0, QFontMetrics(font()).height() + Metrics::grid};
}

void ChartLegend::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const Palette colours = paletteOf(palette());
    const auto all = places(width());
    for (std::size_t index = 0; index < entries.size(); ++index) {
        const QRect& place = all[index];
        const bool isRest = hasRest && index + 1 == entries.size();
        painter.setPen(Qt::NoPen);
        painter.setBrush(seriesColour(index, isRest, appearanceOf(palette())));
        const int swatchTop = place.center().y() - swatchSide / 2;
        painter.drawRoundedRect(QRectF(place.left(), swatchTop, swatchSide, swatchSide), 2, 2);
        painter.setPen(colours.text);
        const QRect line = place.adjusted(swatchSide + Metrics::gap, 0, 0, 0);
        painter.drawText(line, Qt::AlignLeft | Qt::AlignVCenter,
                         painter.fontMetrics().elidedText(text(entries[index]), Qt::ElideMiddle,
                                                          line.width() + 1));
    }
}

}  // namespace fleetwise
