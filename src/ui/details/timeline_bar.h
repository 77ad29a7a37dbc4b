#pragma once

#include "reactions/state_timeline.h"

#include <QWidget>

#include <optional>
#include <vector>

namespace fleetwise {

/// One state a session was in, as long as it lasted.
struct TimelineSpan {
    SessionState state = SessionState::unknown;
    Date from;
    Date until;

    bool operator==(const TimelineSpan&) const = default;
};

/// With their ends; the last one lasts until `now`.
std::vector<TimelineSpan> timelineSpans(const std::vector<StateTimeline::Span>& begun, Date now);

/// "Arbeitet, 14:05 – 14:17, 12 min".
QString timelineText(const TimelineSpan& span, Calendar calendar);

/// The states of a session side by side, as wide as they were long, with the time below. The
/// pointer and the arrow keys tell of one span what it was.
class TimelineBar final : public QWidget {
    Q_OBJECT

public:
    explicit TimelineBar(QWidget* parent = nullptr);

    void setSpans(std::vector<TimelineSpan> newSpans, Calendar newCalendar);

    QSize sizeHint() const override;

protected:
    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void leaveEvent(QEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;

private:
    QRectF barArea() const;
    double positionOf(Date date) const;
    void mark(std::optional<std::size_t> span);
    void paintSpan(QPainter& painter, const QRectF& area, SessionState state) const;
    void paintTexts(QPainter& painter) const;

    std::vector<TimelineSpan> spans;
    Calendar calendar = nullptr;
    std::optional<std::size_t> marked;
};

}  // namespace fleetwise
