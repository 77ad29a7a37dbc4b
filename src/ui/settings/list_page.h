#pragma once

#include "ui/settings/settings_page.h"

namespace fleetwise {

/// Which sessions are listed and how, and what the windows show of usage.
class ListPage final : public SettingsPage {
    Q_OBJECT

public:
    /// The monitor outlives this.
    explicit ListPage(FleetMonitor& monitor, QWidget* parent = nullptr);

    QString name() const override;

private:
    void addOrder();
    void addSessions();
    void addRemoved();
    void addUsage();
};

}  // namespace fleetwise
