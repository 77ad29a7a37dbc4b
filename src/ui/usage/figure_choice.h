#pragma once

#include "fleet/usage_tables.h"
#include "monitor/fleet_monitor.h"

#include <QWidget>

namespace fleetwise {

class ChipChoice;

/// What the settings want to see of use.
UsageColumns wantedColumns(const Settings& settings);

/// Tokens or money: a choice where the settings want both, hidden where they do not.
class FigureChoice final : public QWidget {
    Q_OBJECT

public:
    /// The monitor outlives this.
    explicit FigureChoice(const FleetMonitor& monitor, QWidget* parent = nullptr);

    UsageColumns wanted() const { return wantedColumns(monitor.settings()); }
    UsageFigure figure() const;
    /// Brings it up to date with the settings.
    void follow();

signals:
    /// The user chose the other.
    void changed();

private:
    const FleetMonitor& monitor;
    ChipChoice* choice;
};

}  // namespace fleetwise
