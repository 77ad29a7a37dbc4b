#include "ui/charts/time_chart.h"

#include "localisation/day_format.h"
#include "ui/base/interface_text.h"

#include <QPainter>
#include <QPainterPath>

#include <algorithm>
#include <cmath>

namespace fleetwise {

namespace {

constexpr int linesHigh = 11;
constexpr int leastLinesHigh = 8;
constexpr int leastCharacters = 26;
constexpr float areaOpacity = 0.12F;
constexpr double lineWidth = 2;
constexpr double pointRadius = 3;
constexpr double resetLength = 6;
constexpr double fullPercent = 100;
constexpr double quarter = 25;
constexpr double tickDistanceInLabels = 1.6;

QString percentText(double percent) {
    return shown("%d %%"_text, std::lround(percent));
}

/// For an end that lies beyond the chart.
QString outlook(const QString& tailLabel) {
    return QStringLiteral("→ ") + tailLabel;
}

QPolygonF toPixels(const std::vector<QuotaSeries::Point>& points, std::size_t first,
                   std::size_t last, const auto& frame) {
    QPolygonF line;
    line.reserve(static_cast<qsizetype>(last - first));
    for (std::size_t index = first; index < last; ++index)
        line << QPointF(frame.x(points[index].date), frame.y(points[index].percent));
    return reducedToColumns(line);
}

void fillBelow(QPainter& painter, const QPolygonF& line, double bottom, QColor colour) {
    QPolygonF area = line;
    area << QPointF(line.last().x(), bottom) << QPointF(line.first().x(), bottom);
    colour.setAlphaF(areaOpacity);
    painter.setPen(Qt::NoPen);
    painter.setBrush(colour);
    painter.drawPolygon(area);
}

/// In the middle of a pixel, where a line one pixel wide is sharp.
double sharp(double position) {
    return std::floor(position) + 0.5;
}

void drawHorizontal(QPainter& painter, const QRectF& plot, double y) {
    painter.drawLine(QPointF(plot.left(), sharp(y)), QPointF(plot.right(), sharp(y)));
}

void drawVertical(QPainter& painter, const QRectF& plot, double x) {
    painter.drawLine(QPointF(sharp(x), plot.top()), QPointF(sharp(x), plot.bottom()));
}

}  // namespace

TimeChart::TimeChart(const QString& title, QWidget* parent) : ChartWidget(title, parent) {
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::MinimumExpanding);
}

void TimeChart::setData(TimeChartData newData) {
    if (newData == data) return;
    std::optional<std::size_t> stays;
    if (marked()) {
        // Old points leave at the front, so the index alone would move the marker.
        const auto kept = std::ranges::find(
            newData.series.points, data.series.points[*marked()].date, &QuotaSeries::Point::date);
        if (kept != newData.series.points.end()) {
            stays = static_cast<std::size_t>(kept - newData.series.points.begin());
        }
    }
    data = std::move(newData);
    drawing = {};
    mark(stays);
    itemsChanged();
}

QSize TimeChart::sizeHint() const {
    return {2 * minimumSizeHint().width(), linesHigh * labelHeight()};
}

QSize TimeChart::minimumSizeHint() const {
    return {leastCharacters * QFontMetrics(labelFont()).averageCharWidth(),
            leastLinesHigh * labelHeight()};
}

double TimeChart::labelWidth(const QString& text) const {
    return QFontMetricsF(labelFont()).horizontalAdvance(text);
}

Date TimeChart::until() const {
    Date last = std::max(data.now, data.from + Seconds(1));
    if (data.series.windowEnd) last = std::max(last, *data.series.windowEnd);
    if (data.series.projection) last = std::max(last, data.series.projection->until);
    return std::min(last, std::max(data.latest, data.now));
}

double TimeChart::highestPercent() const {
    double highest = fullPercent;
    for (const auto& point : data.series.points)
        highest = std::max(highest, static_cast<double>(point.percent));
    return std::ceil(highest / quarter) * quarter;
}

TimeChart::Frame TimeChart::frame() const {
    const double highest = highestPercent();
    const double left = labelWidth(percentText(highest)) + 2 * Metrics::gap;
    const double tail =
        data.tailLabel.isEmpty() ? 0 : labelWidth(outlook(data.tailLabel)) + Metrics::gap;
    const double right = std::max<double>(Metrics::margin, tail + Metrics::grid);
    const double foot = labelHeight() + Metrics::margin;
    Frame result;
    result.plot = QRectF(rect()).adjusted(left, labelHeight() / 2.0 + Metrics::grid, -right, -foot);
    result.time = {secondsSince1970(data.from), secondsSince1970(until()), result.plot.left(),
                   result.plot.right()};
    result.share = {0, highest, result.plot.bottom(), result.plot.top()};
    return result;
}

std::optional<std::size_t> TimeChart::itemAt(const QPointF& place) const {
    const Frame at = frame();
    std::vector<double> positions;
    positions.reserve(data.series.points.size());
    for (const auto& point : data.series.points)
        positions.push_back(at.x(point.date));
    return nearestIndex(positions, place.x());
}

QString TimeChart::itemText(std::size_t item) const {
    const auto& point = data.series.points[item];
    const std::string day = formatDate(point.date, data.calendar, "%Y-%m-%d");
    return shown("%@, %@ Uhr · %d %%"_text, shortDayText(day),
                 formatDate(point.date, data.calendar, "%H:%M"), point.percent);
}

std::size_t TimeChart::stepFrom(std::size_t item, int direction, Step step) const {
    if (step == Step::page) return ChartWidget::stepFrom(item, direction, step);
    // Points that share a pixel are one to the eye.
    const Frame at = frame();
    const auto& points = data.series.points;
    const double start = at.x(points[item].date);
    std::size_t next = item;
    do {
        if (direction < 0 ? next == 0 : next + 1 == points.size()) break;
        next = direction < 0 ? next - 1 : next + 1;
    } while (std::abs(at.x(points[next].date) - start) < 1);
    return next;
}

void TimeChart::resizeEvent(QResizeEvent* event) {
    drawing = {};
    ChartWidget::resizeEvent(event);
}

void TimeChart::changeEvent(QEvent* event) {
    drawing = {};
    ChartWidget::changeEvent(event);
}

void TimeChart::paintChart(QPainter& painter, const Palette& colours) {
    if (data.calendar == nullptr) return;
    if (drawing.isNull() || drawing.devicePixelRatio() != devicePixelRatioF())
        drawing = paintedWithoutMarker(colours);
    painter.drawPixmap(0, 0, drawing);
    paintMarker(painter, colours, courseColour(colours), frame());
}

QColor TimeChart::courseColour(const Palette& colours) const {
    return data.isStale ? colours.secondary : colours.accent;
}

QPixmap TimeChart::paintedWithoutMarker(const Palette& colours) const {
    QPixmap painted(size() * devicePixelRatioF());
    painted.setDevicePixelRatio(devicePixelRatioF());
    painted.fill(Qt::transparent);
    QPainter painter(&painted);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setFont(labelFont());
    const Frame at = frame();
    paintWindow(painter, colours, at);
    paintShares(painter, colours, at);
    paintTimes(painter, colours, at);
    painter.save();
    painter.setClipRect(at.plot.adjusted(-pointRadius, -pointRadius, pointRadius, pointRadius));
    paintCourse(painter, courseColour(colours), at);
    painter.restore();
    paintTail(painter, colours, courseColour(colours), at);
    return painted;
}

void TimeChart::paintWindow(QPainter& painter, const Palette& colours, const Frame& at) const {
    if (!data.series.windowStart || !data.series.windowEnd) return;
    const double left = std::max(at.plot.left(), at.x(*data.series.windowStart));
    const QRectF window(QPointF(left, at.plot.top()),
                        QPointF(at.x(*data.series.windowEnd), at.plot.bottom()));
    painter.fillRect(window, colours.hover);
}

void TimeChart::paintShares(QPainter& painter, const Palette& colours, const Frame& at) const {
    double step = quarter;
    while (std::abs(at.y(step) - at.y(0)) < labelHeight() && step < at.share.high)
        step *= 2;
    for (double percent = 0; percent <= at.share.high; percent += step) {
        painter.setPen(QPen(colours.hairline, 1));
        drawHorizontal(painter, at.plot, at.y(percent));
        painter.setPen(colours.secondary);
        const QRectF label(0, at.y(percent) - labelHeight() / 2.0, at.plot.left() - Metrics::gap,
                           labelHeight());
        painter.drawText(label, Qt::AlignRight | Qt::AlignVCenter, percentText(percent));
    }
    painter.setPen(QPen(colours.secondary, 1));
    drawHorizontal(painter, at.plot, at.y(fullPercent));
}

void TimeChart::paintTimes(QPainter& painter, const Palette& colours, const Frame& at) const {
    struct Label {
        double x;
        QString text;
    };
    std::vector<Label> labels{{at.x(data.now), shown("jetzt"_text)}};
    const double widest = labelWidth(QStringLiteral("00:00")) * tickDistanceInLabels;
    const auto most = static_cast<std::size_t>(std::max(1.0, at.plot.width() / widest));
    for (const TimeTick& tick : timeTicks(data.from, until(), data.calendar, most))
        labels.push_back({at.x(tick.date), qtText(tick.label)});
    std::vector<LabelSpan> spans;
    for (const Label& label : labels) {
        const double half = labelWidth(label.text) / 2;
        const double centre = std::clamp(label.x, half, std::max(half, width() - half));
        spans.push_back({centre - half, centre + half, spans.empty() ? 0 : 1});
    }
    const auto fits = fittingLabels(spans, Metrics::gap);
    for (std::size_t index = 0; index < labels.size(); ++index) {
        if (!fits[index]) continue;
        const bool isNow = index == 0;
        painter.setPen(isNow ? colours.text : colours.secondary);
        const QRectF place(spans[index].left - 1, at.plot.bottom() + Metrics::gap,
                           spans[index].right - spans[index].left + 2, labelHeight());
        painter.drawText(place, Qt::AlignCenter | Qt::TextDontClip, labels[index].text);
        if (isNow) continue;
        painter.setPen(QPen(colours.hairline, 1));
        painter.drawLine(QPointF(sharp(labels[index].x), at.plot.bottom()),
                         QPointF(sharp(labels[index].x), at.plot.bottom() + Metrics::grid));
    }
    painter.setPen(QPen(colours.secondary, 1));
    drawVertical(painter, at.plot, at.x(data.now));
    painter.setPen(QPen(colours.text, lineWidth));
    for (const Date reset : data.series.resets) {
        const double x = at.x(reset);
        if (x < at.plot.left()) continue;
        painter.drawLine(QPointF(x, at.plot.bottom() - resetLength), QPointF(x, at.plot.bottom()));
    }
}

void TimeChart::paintCourse(QPainter& painter, const QColor& colour, const Frame& at) const {
    for (const auto& [first, last] : unbrokenRuns(data.series.points, data.longestGap)) {
        const QPolygonF line = toPixels(data.series.points, first, last, at);
        if (line.last().x() - line.first().x() < 1) {
            painter.setPen(Qt::NoPen);
            painter.setBrush(colour);
            painter.drawEllipse(line.last(), pointRadius - 1, pointRadius - 1);
            continue;
        }
        fillBelow(painter, line, at.plot.bottom(), colour);
        painter.setPen(QPen(colour, lineWidth, Qt::SolidLine, Qt::FlatCap, Qt::BevelJoin));
        painter.setBrush(Qt::NoBrush);
        painter.drawPolyline(line);
    }
}

void TimeChart::paintTail(QPainter& painter, const Palette& colours, const QColor& colour,
                          const Frame& at) const {
    if (!data.series.projection) return;
    const auto& tail = *data.series.projection;
    // The window may have ended since it was derived.
    if (tail.until <= tail.from) return;
    const QPointF from(at.x(tail.from), at.y(tail.fromPercent));
    const QPointF whole = QPointF(at.x(tail.until), at.y(tail.untilPercent)) - from;
    // It ends where the chart does, above or to the right.
    double part = 1;
    if (whole.y() < 0) part = std::min(part, (at.plot.top() - from.y()) / whole.y());
    const double atEdge = whole.x() > 0 ? (at.plot.right() - from.x()) / whole.x() : 1;
    const bool isCut = atEdge < std::min(part, 1 - 1e-9);
    const QPointF end = from + whole * std::max(0.0, std::min(part, atEdge));
    const QString text = isCut ? outlook(data.tailLabel) : data.tailLabel;
    painter.setPen(QPen(colour, lineWidth, Qt::DashLine, Qt::FlatCap));
    painter.drawLine(from, end);
    const QRectF label(end.x() + Metrics::grid,
                       std::max(end.y() - labelHeight() / 2.0, at.plot.top() + 1),
                       labelWidth(text) + 1, labelHeight());
    painter.setPen(colours.text);
    painter.drawText(label, Qt::AlignLeft | Qt::AlignVCenter | Qt::TextDontClip, text);
}

void TimeChart::paintMarker(QPainter& painter, const Palette& colours, const QColor& colour,
                            const Frame& at) const {
    if (!marked()) return;
    const auto& point = data.series.points[*marked()];
    const QPointF place(at.x(point.date), at.y(point.percent));
    painter.setPen(QPen(colours.text, 1));
    drawVertical(painter, at.plot, place.x());
    painter.setPen(QPen(colours.ground, lineWidth));
    painter.setBrush(colour);
    painter.drawEllipse(place, pointRadius + 1, pointRadius + 1);
}

}  // namespace fleetwise
