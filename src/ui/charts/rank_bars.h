#pragma once

#include "ui/charts/chart_widget.h"

#include <QString>

#include <vector>

namespace fleetwise {

/// One line of a ranking.
struct RankRow {
    QString name;
    QString figure;    ///< what `value` is in words
    QString text;      ///< all that is known of it, in one line
    double value = 0;  ///< not below 0

    bool operator==(const RankRow&) const = default;
};

/// Names with their figures and a bar under each, in the order given.
class RankBars final : public ChartWidget {
    Q_OBJECT

public:
    explicit RankBars(const QString& title, QWidget* parent = nullptr);

    void setRows(std::vector<RankRow> newRows);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return {minimumWidth(), sizeHint().height()}; }

protected:
    std::size_t itemCount() const override { return rows.size(); }
    std::optional<std::size_t> itemAt(const QPointF& place) const override;
    QString itemText(std::size_t item) const override { return rows[item].text; }
    void paintChart(QPainter& painter, const Palette& colours) override;

private:
    int rowHeight() const;
    double highest() const;

    std::vector<RankRow> rows;
};

}  // namespace fleetwise
