#pragma once

#include "ui/settings/settings_page.h"

namespace fleetwise {

/// Colours, density, what the mark shows, and costs.
class AppearancePage final : public SettingsPage {
    Q_OBJECT

public:
    /// The monitor outlives this.
    explicit AppearancePage(FleetMonitor& monitor, QWidget* parent = nullptr);

    QString name() const override;

private:
    void addMark();
    void addCosts();
};

}  // namespace fleetwise
