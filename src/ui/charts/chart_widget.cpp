#include "ui/charts/chart_widget.h"

#include <QEvent>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>

#include <algorithm>
#include <array>

namespace fleetwise {

namespace {

constexpr double focusWidth = 1.5;
constexpr std::size_t pageSteps = 10;

}  // namespace

ChartWidget::ChartWidget(const QString& givenTitle, QWidget* parent)
    : QWidget(parent), subject(givenTitle) {
    setAccessibleName(subject);
    setFocusPolicy(Qt::StrongFocus);
    setMouseTracking(true);
}

void ChartWidget::mark(std::optional<std::size_t> item) {
    if (item && *item >= itemCount()) item.reset();
    if (item == marker) return;
    marker = item;
    tellMark();
    update();
}

void ChartWidget::itemsChanged() {
    if (marker && *marker >= itemCount()) marker.reset();
    tellMark();
    update();
}

void ChartWidget::tellMark() {
    const QString text = marker ? itemText(*marker) : QString();
    if (text == toldText) return;
    toldText = text;
    // The name of what has the focus is what screen readers speak when it changes.
    setAccessibleName(text.isEmpty() ? subject : subject + QStringLiteral(": ") + text);
    emit markChanged(text);
}

std::size_t ChartWidget::stepFrom(std::size_t item, int direction, Step step) const {
    const std::size_t distance =
        step == Step::one ? 1 : std::max<std::size_t>(1, itemCount() / pageSteps);
    if (direction < 0) return item - std::min(item, distance);
    return std::min(item + distance, itemCount() - 1);
}

std::optional<std::size_t> ChartWidget::itemByKey(int key) const {
    const std::size_t last = itemCount() - 1;
    switch (key) {
        case Qt::Key_Home:
            return 0;
        case Qt::Key_End:
            return last;
        case Qt::Key_Left:
        case Qt::Key_Up:
            return marker ? stepFrom(*marker, -1, Step::one) : last;
        case Qt::Key_Right:
        case Qt::Key_Down:
            return marker ? stepFrom(*marker, 1, Step::one) : 0;
        case Qt::Key_PageUp:
            return marker ? stepFrom(*marker, -1, Step::page) : last;
        case Qt::Key_PageDown:
            return marker ? stepFrom(*marker, 1, Step::page) : 0;
        default:
            return {};
    }
}

void ChartWidget::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Escape && marker) return mark({});
    const auto item = itemCount() == 0 ? std::nullopt : itemByKey(event->key());
    if (!item) return QWidget::keyPressEvent(event);
    mark(item);
}

void ChartWidget::mouseMoveEvent(QMouseEvent* event) {
    mark(itemAt(event->position()));
}

void ChartWidget::leaveEvent(QEvent* event) {
    mark({});
    QWidget::leaveEvent(event);
}

void ChartWidget::focusInEvent(QFocusEvent* event) {
    QWidget::focusInEvent(event);
    update();
}

void ChartWidget::focusOutEvent(QFocusEvent* event) {
    mark({});
    QWidget::focusOutEvent(event);
    update();
}

bool ChartWidget::event(QEvent* event) {
    if (event->type() == QEvent::FontChange) updateGeometry();
    return QWidget::event(event);
}

void ChartWidget::paintEvent(QPaintEvent*) {
    const Palette colours = paletteOf(palette());
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setFont(labelFont());
    paintChart(painter, colours);
    if (!hasFocus()) return;
    painter.setBrush(Qt::NoBrush);
    painter.setPen(QPen(colours.accent, focusWidth));
    painter.drawRoundedRect(QRectF(rect()).adjusted(1, 1, -1, -1), Metrics::rowRadius,
                            Metrics::rowRadius);
}

QColor seriesColour(std::size_t index, bool isRest, Appearance appearance) {
    using enum SessionState;
    constexpr std::array colours{working, scheduled, decision, compacting, failed};
    return stateColour(isRest ? dormant : colours.at(std::min(index, colours.size() - 1)),
                       appearance);
}

}  // namespace fleetwise
