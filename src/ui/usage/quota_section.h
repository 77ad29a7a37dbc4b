#pragma once

#include "ui/charts/figure_section.h"
#include "usage/quota_window.h"
#include "usage/usage_sample.h"

#include <optional>

namespace fleetwise {

class ChipChoice;
class TimeChart;

/// One quota window of an account: how it stands in words, and its course over a choice of spans.
class QuotaSection final : public QWidget {
    Q_OBJECT

public:
    /// `length` tells the window: fiveHours or sevenDays.
    explicit QuotaSection(Seconds length, QWidget* parent = nullptr);

    /// All values of the account, and the window they led to.
    void setQuota(const QuotaValues& values, const std::optional<QuotaWindow>& window, Date now,
                  Calendar calendar);
    void setShowsTable(bool showsTable) { section->setShowsTable(showsTable); }

signals:
    void spanChanged();

private:
    Seconds span() const;

    const Seconds length;
    TimeChart* chart;
    FigureSection* section;
    ChipChoice* spans;
};

/// The window in words: percentage, reset, rate, projection, budget, all that is known, on one
/// line.
QString quotaSummary(const QuotaWindow& window, Seconds length, Date now, Calendar calendar);

/// The values as a table, the oldest first.
FigureTable quotaTable(const QuotaValues& values, Seconds length, Date since, Date now,
                       Calendar calendar);

}  // namespace fleetwise
