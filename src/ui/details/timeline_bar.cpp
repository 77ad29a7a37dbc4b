#include "ui/details/timeline_bar.h"

#include "localisation/duration_format.h"
#include "ui/base/interface_text.h"
#include "ui/base/state_glyph.h"
#include "ui/base/theme.h"

#include <QAccessible>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QPainterPath>

#include <algorithm>

namespace fleetwise {

namespace {

constexpr int timelineBarHeight = 18;
constexpr int spanSignSide = 10;
constexpr double unmarkedStrength = 0.45;

QString clockTime(Date date, Calendar calendar) {
    return qtText(formatDate(date, calendar, "%H:%M"));
}

}  // namespace

std::vector<TimelineSpan> timelineSpans(const std::vector<StateTimeline::Span>& begun, Date now) {
    std::vector<TimelineSpan> spans;
    for (const StateTimeline::Span& span : begun) {
        if (!spans.empty()) spans.back().until = span.since;
        spans.push_back({span.state, span.since, std::max(span.since, now)});
    }
    return spans;
}

QString timelineText(const TimelineSpan& span, Calendar calendar) {
    return shown("%@, %@ bis %@, %@"_text, label(span.state),
                 formatDate(span.from, calendar, "%H:%M"),
                 formatDate(span.until, calendar, "%H:%M"), durationText(span.until - span.from));
}

TimelineBar::TimelineBar(QWidget* parent) : QWidget(parent) {
    setFocusPolicy(Qt::StrongFocus);
    setMouseTracking(true);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    setAccessibleName(shown("Verlauf"_text));
}

void TimelineBar::setSpans(std::vector<TimelineSpan> newSpans, Calendar newCalendar) {
    if (spans == newSpans) return;
    spans = std::move(newSpans);
    calendar = newCalendar;
    if (marked && *marked >= spans.size()) marked.reset();
    if (!marked && !spans.empty()) {
        setAccessibleDescription(timelineText(spans.back(), calendar));
    }
    update();
}

QSize TimelineBar::sizeHint() const {
    return {0, timelineBarHeight + Metrics::grid + QFontMetrics(smallFont(font())).lineSpacing()};
}

QRectF TimelineBar::barArea() const {
    return QRectF(0, 0, width(), timelineBarHeight).adjusted(1, 1, -1, -1);
}

double TimelineBar::positionOf(Date date) const {
    const QRectF area = barArea();
    const Seconds whole = spans.back().until - spans.front().from;
    if (whole <= Seconds(0)) return date > spans.front().from ? area.right() : area.left();
    return area.left() + area.width() * ((date - spans.front().from) / whole);
}

bool TimelineBar::event(QEvent* event) {
    // The key that ends the marking must not close anything as well.
    if (event->type() == QEvent::ShortcutOverride && marked &&
        static_cast<QKeyEvent*>(event)->key() == Qt::Key_Escape) {
        event->accept();
        return true;
    }
    return QWidget::event(event);
}

void TimelineBar::mark(std::optional<std::size_t> span) {
    if (marked == span) return;
    marked = span;
    if (marked) {
        setAccessibleDescription(timelineText(spans[*marked], calendar));
        QAccessibleEvent changed(this, QAccessible::DescriptionChanged);
        QAccessible::updateAccessibility(&changed);
    }
    update();
}

void TimelineBar::keyPressEvent(QKeyEvent* event) {
    const std::size_t last = spans.empty() ? 0 : spans.size() - 1;
    const std::size_t current = marked.value_or(last);
    switch (spans.empty() ? 0 : event->key()) {
        case Qt::Key_Left:
            return mark(current > 0 && marked ? current - 1 : current);
        case Qt::Key_Right:
            return mark(std::min(current + 1, last));
        case Qt::Key_Home:
            return mark(0);
        case Qt::Key_End:
            return mark(last);
        case Qt::Key_Escape:
            if (marked) return mark({});
            break;
        default:
            break;
    }
    QWidget::keyPressEvent(event);
}

void TimelineBar::mouseMoveEvent(QMouseEvent* event) {
    std::optional<std::size_t> pointed;
    for (std::size_t number = 0; number < spans.size(); ++number) {
        if (positionOf(spans[number].from) <= event->position().x()) pointed = number;
    }
    mark(pointed);
}

void TimelineBar::leaveEvent(QEvent* event) {
    mark({});
    QWidget::leaveEvent(event);
}

void TimelineBar::focusOutEvent(QFocusEvent* event) {
    mark({});
    QWidget::focusOutEvent(event);
}

void TimelineBar::paintSpan(QPainter& painter, const QRectF& area, SessionState state) const {
    const QColor colour = stateColour(state, appearanceOf(palette()));
    painter.fillRect(area, colour);
    if (area.width() < spanSignSide + Metrics::gap) return;
    const QRectF sign(area.left() + Metrics::grid, area.center().y() - spanSignSide / 2.0,
                      spanSignSide, spanSignSide);
    paintStateGlyph(painter, sign, state, paletteOf(palette()).ground);
}

void TimelineBar::paintTexts(QPainter& painter) const {
    const Palette colours = paletteOf(palette());
    painter.setFont(smallFont(font()));
    const QRect line = rect().adjusted(0, timelineBarHeight + Metrics::grid, 0, 0);
    if (marked) {
        painter.setPen(colours.text);
        painter.drawText(line, Qt::AlignLeft | Qt::AlignTop,
                         painter.fontMetrics().elidedText(timelineText(spans[*marked], calendar),
                                                          Qt::ElideRight, line.width()));
        return;
    }
    painter.setPen(colours.secondary);
    painter.drawText(line, Qt::AlignLeft | Qt::AlignTop, clockTime(spans.front().from, calendar));
    painter.drawText(line, Qt::AlignRight | Qt::AlignTop, shown("jetzt"_text));
}

void TimelineBar::paintEvent(QPaintEvent*) {
    if (spans.empty()) return;
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const Palette colours = paletteOf(palette());
    QPainterPath outline;
    outline.addRoundedRect(barArea(), Metrics::grid, Metrics::grid);
    painter.save();
    painter.setClipPath(outline);
    for (std::size_t number = 0; number < spans.size(); ++number) {
        const double left = positionOf(spans[number].from);
        const double right =
            number + 1 == spans.size() ? barArea().right() : positionOf(spans[number].until);
        QRectF area = barArea();
        area.setLeft(left);
        area.setRight(std::max(right, left + 1));
        painter.setOpacity(marked && *marked != number ? unmarkedStrength : 1);
        paintSpan(painter, area, spans[number].state);
    }
    painter.restore();
    if (hasFocus()) {
        painter.setPen(QPen(colours.text, 1.5));
        painter.setBrush(Qt::NoBrush);
        painter.drawPath(outline);
    }
    paintTexts(painter);
}

}  // namespace fleetwise
