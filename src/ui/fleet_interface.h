#pragma once

#include "monitor/fleet_monitor.h"
#include "ui/fleet_list_model.h"
#include "ui/fleet_popover.h"
#include "ui/fleet_window.h"
#include "ui/session_row_delegate.h"
#include "ui/tray_item.h"

#include <QPalette>

class QApplication;

namespace fleetwise {

/// Everything of the application that can be seen, following the monitor.
class FleetInterface final : public QObject, private FleetMonitor::Observer {
    Q_OBJECT

public:
    /// Both outlive this.
    FleetInterface(FleetMonitor& monitor, QApplication& application);
    ~FleetInterface() override;

    /// Shows the main window.
    void start();

    /// Says something in the main window, for a while.
    void tell(const QString& message) { window.tell(message); }

private:
    void fleetChanged() override;
    void settingsChanged() override;
    void hookChanged() override;
    void costsChanged() override { showToday(); }

    void connectTray();
    void connectPopover();
    void applyAppearance();
    void followTray();
    void showMark();
    void showToday();

    FleetMonitor& monitor;
    QApplication& application;
    const QPalette desktopPalette;
    FleetListModel listModel;
    FleetListModel glanceModel;
    SessionRowDelegate glanceDelegate;
    FleetWindow window;
    FleetPopover popover;
    TrayItem tray;
    MarkFigures shownMark;
    bool hasStarted = false;
};

}  // namespace fleetwise
