#pragma once

#include "session/session_state.h"
#include "ui/settings/settings_page.h"

namespace fleetwise {

/// What notifications tell of, and the exceptions for sessions and projects.
class NotificationsPage final : public SettingsPage {
    Q_OBJECT

public:
    /// The monitor outlives this.
    explicit NotificationsPage(FleetMonitor& monitor, QWidget* parent = nullptr);

    QString name() const override;

private:
    void addGeneral();
    void addStates();
    void addExceptions();
    void setNotifies(SessionState state, bool notifies);
};

}  // namespace fleetwise
