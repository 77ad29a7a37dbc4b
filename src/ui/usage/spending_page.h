#pragma once

#include "fleet/figure_table.h"
#include "fleet/usage_tables.h"
#include "monitor/fleet_monitor.h"
#include "ui/charts/day_bars.h"
#include "ui/usage/usage_page.h"

#include <string>
#include <vector>

namespace fleetwise {

class FigureChoice;
class FigureSection;

/// What all sessions used on the last days, stacked by model: the largest first.
struct SpendingFigures {
    struct Series {
        std::string name;  ///< a model, or "Übrige"
        double total = 0;

        bool operator==(const Series&) const = default;
    };

    std::vector<Series> series;             ///< at most `mostSeries`
    bool hasRest = false;                   ///< the last of them is all others
    std::vector<std::vector<double>> days;  ///< of each day the part of each series

    bool operator==(const SpendingFigures&) const = default;
};

SpendingFigures spendingFigures(const std::vector<UsageDay>& days, UsageFigure figure);

/// Every model of every day, the oldest first, with their sum.
FigureTable spendingTable(const std::vector<UsageDay>& days, UsageFigure figure);

/// Tokens or money by day and model, over the last thirty days.
class SpendingPage final : public UsagePage {
    Q_OBJECT

public:
    static constexpr int shownDays = 30;

    /// The monitor outlives this.
    explicit SpendingPage(FleetMonitor& monitor, QWidget* parent = nullptr);

    Subject subject() const override { return Subject::spending; }
    QString name() const override;
    bool isWanted() const override;
    void refresh(Date now) override;
    void setShowsTables(bool showsTables) override;

private:
    UsageFigure figure() const;
    QString summary(const std::vector<UsageDay>& days) const;
    DayBarsData bars(const std::vector<UsageDay>& days, const SpendingFigures& figures) const;

    FleetMonitor& monitor;
    DayBars* chart;
    FigureSection* section;
    FigureChoice* choice;
};

}  // namespace fleetwise
