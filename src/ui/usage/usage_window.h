#pragma once

#include "monitor/fleet_monitor.h"
#include "ui/usage/usage_page.h"

#include <QWidget>

#include <utility>
#include <vector>

class QButtonGroup;
class QLabel;
class QScrollArea;
class QStackedWidget;
class QToolButton;

namespace fleetwise {

/// The window "Nutzung": quota, use and waiting time over the last days, as charts or as tables.
/// Reads and shows only while it can be seen.
class UsageWindow final : public QWidget, private FleetMonitor::Observer {
    Q_OBJECT

public:
    /// The monitor outlives this.
    explicit UsageWindow(FleetMonitor& monitor);
    ~UsageWindow() override;

    /// Shows the window in front of all others.
    void bringUp();

    UsagePage& currentPage() const;

protected:
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    void changeEvent(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    struct Entry {
        UsagePage* page;
        QScrollArea* area;
        QToolButton* button;
    };

    void usageChanged() override { refresh(UsagePage::Subject::quota); }
    void costsChanged() override { refresh(UsagePage::Subject::spending); }
    void settingsChanged() override;
    void clockTicked() override;

    void addPage(UsagePage* page);
    void layOut();
    void addShortcuts();
    void turnTo(std::size_t index);
    void showWantedPages();
    bool canBeSeen() const { return isVisible() && !isMinimized(); }
    Date now() const;
    void refresh();
    void refresh(UsagePage::Subject subject);
    void restoreGeometryOnce();

    FleetMonitor& monitor;
    QStackedWidget* stack;
    QButtonGroup* choice;
    QToolButton* tables;
    std::vector<Entry> pages;
    Date shownAt;
};

}  // namespace fleetwise
