#pragma once

#include "monitor/fleet_monitor.h"
#include "ui/settings/settings_services.h"

#include <QTimer>
#include <QWidget>

#include <string>
#include <string_view>
#include <vector>

class QListWidget;
class QScrollArea;
class QStackedWidget;

namespace fleetwise {

class SettingsPage;

/// The window "Einstellungen": the pages by name at the left, the chosen one beside them. A page
/// is made when it is first shown, and kept up to date only while it can be seen.
class SettingsWindow final : public QWidget, private FleetMonitor::Observer {
    Q_OBJECT

public:
    /// The monitor and the services outlive this.
    SettingsWindow(FleetMonitor& monitor, const SettingsServices& services);
    ~SettingsWindow() override;

    /// Shows the window in front of all others.
    void bringUp();

    /// Turns to the page of this id, such as "hooks" or "prices"; one that is not known changes
    /// nothing.
    void showPage(std::string_view id);
    std::string currentPageId() const;

signals:
    /// The introduction is to be shown again.
    void onboardingWanted();

protected:
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    void changeEvent(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    void settingsChanged() override { refresh(); }
    void hookChanged() override { refresh(); }
    void costsChanged() override { refresh(); }
    void usageChanged() override { refresh(); }

    void layOut();
    void addShortcuts();
    void turnTo(int index);
    SettingsPage* makePage(int index);
    bool canBeSeen() const { return isVisible() && !isMinimized(); }
    /// Refreshes the page that is shown, and stops asking where nobody looks.
    void refresh();
    void restoreGeometryOnce();

    FleetMonitor& monitor;
    const SettingsServices services;
    QListWidget* list;
    QStackedWidget* stack;
    std::vector<QScrollArea*> areas;   ///< one for each page, empty until it is shown
    std::vector<SettingsPage*> pages;  ///< null where it has not been shown yet
    QTimer clock;
};

}  // namespace fleetwise
