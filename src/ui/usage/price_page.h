#pragma once

#include "monitor/fleet_monitor.h"
#include "ui/usage/usage_page.h"

class QLabel;

namespace fleetwise {

class FigureTableModel;
class PlainTable;

/// The price book in use: all prices, where they come from, and whether they agree with what the
/// agents bill.
class PricePage final : public UsagePage {
    Q_OBJECT

public:
    /// The monitor outlives this.
    explicit PricePage(FleetMonitor& monitor, QWidget* parent = nullptr);

    Subject subject() const override { return Subject::spending; }
    QString name() const override;
    bool isWanted() const override;
    void refresh(Date now) override;
    /// Prices are a table in any case.
    void setShowsTables(bool /*showsTables*/) override {}

signals:
    /// The user wants to change prices.
    void settingsWanted();

protected:
    void changeEvent(QEvent* event) override;

private:
    void layOut();

    FleetMonitor& monitor;
    QLabel* heading;
    QLabel* origin;
    QLabel* comparison;
    QLabel* withoutPrice;
    PlainTable* view;
    FigureTableModel* model;
};

}  // namespace fleetwise
