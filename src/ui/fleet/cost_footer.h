#pragma once

#include "monitor/fleet_monitor.h"
#include "ui/base/elided_label.h"

namespace fleetwise {

/// What the listed sessions cost together, and how far the reading of costs has come.
class CostFooter final : public ElidedLabel, private FleetMonitor::Observer {
    Q_OBJECT

public:
    /// The monitor outlives this.
    explicit CostFooter(FleetMonitor& monitor, QWidget* parent = nullptr);
    ~CostFooter() override;

    /// Asks only for the room that the amount takes, and uses all that it is given.
    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

private:
    void fleetChanged() override { showCosts(); }
    void settingsChanged() override { showCosts(); }
    void costsChanged() override { showCosts(); }
    void costScanChanged() override { showCosts(); }

    void showCosts();
    void showTotal(MoneyBasis basis);
    CostFigures listedFigures() const;

    FleetMonitor& monitor;
};

}  // namespace fleetwise
