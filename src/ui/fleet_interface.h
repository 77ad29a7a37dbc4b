#pragma once

#include "monitor/archive_index.h"
#include "monitor/fleet_monitor.h"
#include "ui/archive/archive_window.h"
#include "ui/fleet/fleet_list_model.h"
#include "ui/fleet/fleet_window.h"
#include "ui/fleet/session_row_delegate.h"
#include "ui/onboarding/onboarding_window.h"
#include "ui/settings/settings_services.h"
#include "ui/settings/settings_window.h"
#include "ui/tray/fleet_popover.h"
#include "ui/tray/tray_item.h"
#include "ui/usage/usage_window.h"

#include <QPalette>
#include <QTimer>

#include <memory>
#include <optional>
#include <string>

class QApplication;

namespace fleetwise {

/// Everything of the application that can be seen, following the monitor.
class FleetInterface final : public QObject, private FleetMonitor::Observer {
    Q_OBJECT

public:
    /// What of the application can be seen.
    struct OpenWindows {
        bool fleet = false;
        bool usage = false;
        bool archive = false;
        bool onboarding = false;
        std::optional<std::string> settingsPage;

        bool operator==(const OpenWindows&) const = default;
    };

    /// All that is referred to outlives this. `desktopPalette` is the palette that the desktop gave
    /// the application before it got ours.
    FleetInterface(FleetMonitor& monitor, ArchiveIndex& archive, SettingsServices services,
                   QApplication& application, const QPalette& desktopPalette);
    ~FleetInterface() override;

    /// Shows these windows. Without a tray the main window is among them, minimised.
    void start(const OpenWindows& windows);

    OpenWindows openWindows() const;

    void showUsage();
    void showArchive();
    /// At the page of this id, see SettingsWindow; where it last stood, if empty.
    void showSettings(const std::string& page = {});
    /// Tells what the application reads, writes and shows.
    void showOnboarding();

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

    template <typename Window, typename... Arguments>
    Window& made(std::unique_ptr<Window>& window, Arguments&&... arguments);

    FleetMonitor& monitor;
    ArchiveIndex& archive;
    const SettingsServices services;
    QApplication& application;
    const QPalette desktopPalette;
    FleetListModel listModel;
    FleetListModel glanceModel;
    SessionRowDelegate glanceDelegate;
    FleetWindow window;
    FleetPopover popover;
    // Made when they are first wanted.
    std::unique_ptr<UsageWindow> usageWindow;
    std::unique_ptr<ArchiveWindow> archiveWindow;
    std::unique_ptr<SettingsWindow> settingsWindow;
    std::unique_ptr<OnboardingWindow> onboarding;
    TrayItem tray;
    MarkFigures shownMark;
    std::string toldSession;  ///< of the latest message beside the mark; may be empty
    QTimer markClock;         ///< moves what the mark tells of time
    bool hasStarted = false;
};

}  // namespace fleetwise
