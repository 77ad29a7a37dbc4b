#include "ui/quota/quota_painting.h"

#include "ui/base/bar_painting.h"
#include "ui/base/elided_label.h"
#include "ui/base/theme.h"

#include <QPainter>

#include <algorithm>

namespace fleetwise {

namespace {

constexpr float tailOpacity = 0.35F;
constexpr int barHeight = 4;
constexpr int usualCharacters = 40;  ///< of a line, which asks for as much room beside others
constexpr int widestTitle = 160;

int lineHeight(const QFontMetrics& metrics) {
    return metrics.height() + Metrics::grid + barHeight;
}

QuotaPlaces stackedPlaces(const QuotaFigures& figures, int width, const QFontMetrics& metrics) {
    QuotaPlaces places;
    int top = 0;
    for (const auto& block : figures.blocks) {
        QuotaPlaces::Block place;
        if (!block.title.isEmpty()) {
            place.title = QRect(0, top, width, metrics.height());
            top += metrics.height() + Metrics::grid;
        }
        for (std::size_t line = 0; line < block.lines.size(); ++line) {
            place.lines.emplace_back(0, top, width, lineHeight(metrics));
            top += lineHeight(metrics) + Metrics::gap;
        }
        places.blocks.push_back(std::move(place));
        places.height = top - (block.lines.empty() ? Metrics::grid : Metrics::gap);
        top = places.height + Metrics::margin;
    }
    return places;
}

/// Fills rows with blocks. All titles are as wide as the widest, so that rows are columns too.
class Rows {
public:
    Rows(const QuotaFigures& givenFigures, int givenWidth, const QFontMetrics& givenMetrics)
        : figures(givenFigures), width(givenWidth), metrics(givenMetrics) {
        for (const auto& block : figures.blocks) {
            const int title = metrics.horizontalAdvance(block.title);
            titleWidth = std::max(titleWidth, block.title.isEmpty() ? 0 : title + 1);
        }
        titleWidth = std::min({titleWidth, widestTitle, width / 4});
    }

    QuotaPlaces places() const {
        QuotaPlaces all;
        int top = 0;
        for (std::size_t first = 0; first < figures.blocks.size();) {
            std::size_t end = first + 1;
            while (end < figures.blocks.size() && usualWidth(first, end + 1) <= width)
                ++end;
            placeRow(all, first, end, top);
            all.height = top + lineHeight(metrics);
            top = all.height + Metrics::gap;
            first = end;
        }
        return all;
    }

private:
    int linesIn(std::size_t first, std::size_t end) const {
        std::size_t count = 0;
        for (std::size_t block = first; block < end; ++block)
            count += figures.blocks[block].lines.size();
        return static_cast<int>(count);
    }

    int titleRoom() const { return titleWidth > 0 ? titleWidth + Metrics::gap : 0; }

    int usualWidth(std::size_t first, std::size_t end) const {
        const int line = usualCharacters * metrics.averageCharWidth() + Metrics::groupGap;
        return static_cast<int>(end - first) * titleRoom() + linesIn(first, end) * line -
               Metrics::groupGap;
    }

    void placeRow(QuotaPlaces& all, std::size_t first, std::size_t end, int top) const {
        const int count = std::max(1, linesIn(first, end));
        const int room = width - static_cast<int>(end - first) * titleRoom();
        const bool endsWithLine = !figures.blocks[end - 1].lines.empty();
        const int gaps = (endsWithLine ? count - 1 : count) * Metrics::groupGap;
        const int each = std::max(0, (room - gaps) / count);
        int left = 0;
        for (std::size_t block = first; block < end; ++block) {
            QuotaPlaces::Block place;
            if (!figures.blocks[block].title.isEmpty()) {
                place.title = QRect(left, top, titleWidth, metrics.height());
            }
            left += titleRoom();
            for (std::size_t line = 0; line < figures.blocks[block].lines.size(); ++line) {
                place.lines.emplace_back(left, top, each, lineHeight(metrics));
                left += each + Metrics::groupGap;
            }
            all.blocks.push_back(std::move(place));
        }
    }

    const QuotaFigures& figures;
    int width;
    const QFontMetrics& metrics;
    int titleWidth = 0;
};

void paintLine(QPainter& painter, const QRect& place, const QuotaFigures::Line& line,
               const Palette& colours) {
    painter.setPen(line.isStale ? colours.secondary : colours.text);
    painter.drawText(place, Qt::AlignLeft | Qt::AlignTop | Qt::TextSingleLine,
                     fittingText(line.text, painter.fontMetrics(), place.width()));
    const QColor usual = line.used >= warningShare ? colours.warning : colours.accent;
    const QColor colour = line.isStale ? colours.secondary : usual;
    QColor tail = line.projected.value_or(0) >= 1 ? colours.warning : colour;
    tail.setAlphaF(tailOpacity);
    const QRectF bar = place.adjusted(0, place.height() - barHeight, 0, 0);
    fillBar(painter, bar, 1, colours.hairline);
    fillBar(painter, bar, line.projected.value_or(0), tail);
    fillBar(painter, bar, line.used, colour);
}

}  // namespace

QuotaPlaces quotaPlaces(const QuotaFigures& figures, QuotaArrangement arrangement, int width,
                        const QFontMetrics& metrics) {
    return arrangement == QuotaArrangement::stacked ? stackedPlaces(figures, width, metrics)
                                                    : Rows(figures, width, metrics).places();
}

void paintQuota(QPainter& painter, const QuotaFigures& figures, const QuotaPlaces& places,
                const QPalette& ofWidget) {
    const Palette colours = paletteOf(ofWidget);
    painter.setRenderHint(QPainter::Antialiasing);
    for (std::size_t block = 0; block < places.blocks.size(); ++block) {
        const auto& place = places.blocks[block];
        painter.setPen(colours.secondary);
        painter.drawText(place.title, Qt::AlignLeft | Qt::AlignTop | Qt::TextSingleLine,
                         painter.fontMetrics().elidedText(figures.blocks[block].title,
                                                          Qt::ElideRight, place.title.width()));
        for (std::size_t line = 0; line < place.lines.size(); ++line)
            paintLine(painter, place.lines[line], figures.blocks[block].lines[line], colours);
    }
}

QString explanationAt(const QuotaFigures& figures, const QuotaPlaces& places, const QPoint& point) {
    for (std::size_t block = 0; block < places.blocks.size(); ++block) {
        const auto& lines = places.blocks[block].lines;
        const auto under =
            std::ranges::find_if(lines, [&](const QRect& line) { return line.contains(point); });
        if (under == lines.end()) continue;
        const auto& shownBlock = figures.blocks[block];
        const QString& text =
            shownBlock.lines[static_cast<std::size_t>(under - lines.begin())].explanation;
        return shownBlock.title.isEmpty() ? text : shownBlock.title + u'\n' + text;
    }
    return {};
}

}  // namespace fleetwise
