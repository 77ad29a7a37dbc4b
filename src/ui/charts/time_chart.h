#pragma once

#include "ui/charts/chart_geometry.h"
#include "ui/charts/chart_widget.h"
#include "usage/quota_series.h"

#include <QPixmap>
#include <QString>

namespace fleetwise {

/// What one quota window's chart shows.
struct TimeChartData {
    QuotaSeries series;
    Date from;  ///< where the time axis begins
    Date now;
    Date latest;            ///< the axis ends here at the latest; not before `now`
    Seconds longestGap{0};  ///< between two points that a line joins
    bool isStale = false;
    QString tailLabel;  ///< at the end of the projection: "87 %", or when it will be full
    Calendar calendar = nullptr;

    bool operator==(const TimeChartData&) const = default;
};

/// A quota window over time: what was measured as a line with an area under it, broken where
/// nothing was measured; the present window tinted, past resets on the axis, now, and the
/// projection dashed.
class TimeChart final : public ChartWidget {
    Q_OBJECT

public:
    explicit TimeChart(const QString& title, QWidget* parent = nullptr);

    void setData(TimeChartData newData);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

protected:
    std::size_t itemCount() const override { return data.series.points.size(); }
    std::optional<std::size_t> itemAt(const QPointF& place) const override;
    QString itemText(std::size_t item) const override;
    std::size_t stepFrom(std::size_t item, int direction, Step step) const override;
    void paintChart(QPainter& painter, const Palette& colours) override;
    void resizeEvent(QResizeEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    /// Where everything stands for one size.
    struct Frame {
        QRectF plot;
        LinearScale time;   ///< of seconds since 1970
        LinearScale share;  ///< of percent

        double x(Date date) const { return time.position(secondsSince1970(date)); }
        double y(double percent) const { return share.position(percent); }
    };

    Frame frame() const;
    QPixmap paintedWithoutMarker(const Palette& colours) const;
    Date until() const;
    QColor courseColour(const Palette& colours) const;
    double highestPercent() const;
    double labelWidth(const QString& text) const;
    void paintShares(QPainter& painter, const Palette& colours, const Frame& frame) const;
    void paintTimes(QPainter& painter, const Palette& colours, const Frame& frame) const;
    void paintWindow(QPainter& painter, const Palette& colours, const Frame& frame) const;
    void paintCourse(QPainter& painter, const QColor& colour, const Frame& frame) const;
    void paintTail(QPainter& painter, const Palette& colours, const QColor& colour,
                   const Frame& frame) const;
    void paintMarker(QPainter& painter, const Palette& colours, const QColor& colour,
                     const Frame& frame) const;

    TimeChartData data;
    QPixmap drawing;  ///< all but the marker, which moves often; null: to be painted
};

}  // namespace fleetwise
