#pragma once

#include "ui/charts/chart_geometry.h"
#include "ui/charts/chart_widget.h"

#include <QString>

#include <utility>
#include <vector>

namespace fleetwise {

/// What a chart of days shows.
struct DayBarsData {
    struct Bar {
        QString label;              ///< on the axis: "21.11."
        QString text;               ///< day and figures in one line
        std::vector<double> parts;  ///< from the bottom up, one for each series; not below 0

        double sum() const;
        bool operator==(const Bar&) const = default;
    };

    std::vector<Bar> bars;  ///< the oldest first
    /// The value axis from 0 up, with a label for each place; the last is the top.
    std::vector<std::pair<double, QString>> ticks;
    bool hasRest = false;  ///< the last series stands for all others

    bool operator==(const DayBarsData&) const = default;
};

/// One bar for each day, stacked of up to `mostSeries` series.
class DayBars final : public ChartWidget {
    Q_OBJECT

public:
    explicit DayBars(const QString& title, QWidget* parent = nullptr);

    void setData(DayBarsData newData);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

protected:
    std::size_t itemCount() const override { return data.bars.size(); }
    std::optional<std::size_t> itemAt(const QPointF& place) const override;
    QString itemText(std::size_t item) const override { return data.bars[item].text; }
    void paintChart(QPainter& painter, const Palette& colours) override;

private:
    QRectF plot() const;
    /// The column of one bar with the space around it.
    QRectF column(std::size_t item, const QRectF& plot) const;
    void paintTicks(QPainter& painter, const Palette& colours, const QRectF& plot) const;
    void paintBar(QPainter& painter, std::size_t item, const QRectF& plot) const;
    void paintLabels(QPainter& painter, const Palette& colours, const QRectF& plot) const;
    LinearScale heights(const QRectF& plot) const;

    DayBarsData data;
};

}  // namespace fleetwise
