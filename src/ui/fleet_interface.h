#pragma once

#include "monitor/fleet_monitor.h"
#include "ui/fleet/fleet_list_model.h"
#include "ui/fleet/fleet_window.h"
#include "ui/fleet/session_row_delegate.h"
#include "ui/tray/fleet_popover.h"
#include "ui/tray/tray_item.h"
#include "ui/usage/usage_window.h"

#include <QPalette>
#include <QTimer>

#include <memory>

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

    /// Shows the usage window.
    void showUsage();

    /// Says something in the main window, for a while.
    void tell(const QString& message) { window.tell(message); }

    /// Shows it beside the mark in the tray, where that can be seen. A click brings the session's
    /// window to the front.
    void show(const Notification& notification);

private:
    void fleetChanged() override;
    void settingsChanged() override;
    void hookChanged() override;
    void costsChanged() override { showToday(); }
    void usageChanged() override;
    void clockTicked() override { showQuota(); }

    void connectTray();
    void connectPopover();
    void applyAppearance();
    void followTray();
    void showMark();
    void showToday();
    /// Only while the popover can be seen.
    void showQuota();
    void updatePopover();
    Date quotaTime() const;

    FleetMonitor& monitor;
    QApplication& application;
    const QPalette desktopPalette;
    FleetListModel listModel;
    FleetListModel glanceModel;
    SessionRowDelegate glanceDelegate;
    FleetWindow window;
    FleetPopover popover;
    std::unique_ptr<UsageWindow> usageWindow;  ///< made when it is first wanted
    TrayItem tray;
    MarkFigures shownMark;
    std::string toldSession;  ///< of the latest message beside the mark; may be empty
    QTimer markClock;         ///< moves what the mark tells of time
    bool hasStarted = false;
};

}  // namespace fleetwise
