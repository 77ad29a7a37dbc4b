#pragma once

#include "monitor/archive_index.h"
#include "monitor/fleet_monitor.h"
#include "ui/usage/usage_page.h"

#include <QWidget>

#include <optional>
#include <utility>
#include <vector>

class QButtonGroup;
class QLabel;
class QScrollArea;
class QStackedWidget;
class QToolButton;

namespace fleetwise {

/// The window "Nutzung": quota, use by day, model, project and session, waiting times and prices,
/// as charts or as tables. Reads and shows only while it can be seen.
class UsageWindow final : public QWidget,
                          private FleetMonitor::Observer,
                          private ArchiveIndex::Observer {
    Q_OBJECT

public:
    /// Monitor and archive outlive this.
    UsageWindow(FleetMonitor& monitor, ArchiveIndex& archive);
    ~UsageWindow() override;

    /// Shows the window in front of all others.
    void bringUp();

    UsagePage& currentPage() const;

signals:
    /// The user wants to change prices.
    void priceSettingsWanted();

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
        bool hasCharts;
    };

    void usageChanged() override { refresh(UsagePage::Subject::quota); }
    void costsChanged() override { refresh(UsagePage::Subject::spending); }
    void settingsChanged() override;
    void clockTicked() override;
    void archiveChanged() override;

    void addPages();
    void addPage(UsagePage* page);
    void layOut();
    void addShortcuts();
    void turnTo(std::size_t index);
    void showWantedPages();
    void setPinned(bool isPinned);
    /// Asks for the archive where the page needs it, once for each time the window is shown.
    void readArchive();
    bool canBeSeen() const { return isVisible() && !isMinimized(); }
    Date now() const;
    void refresh();
    void refresh(UsagePage::Subject subject);
    void restoreGeometryOnce();

    FleetMonitor& monitor;
    ArchiveIndex& archive;
    QStackedWidget* stack;
    QButtonGroup* choice;
    QToolButton* tables;
    QToolButton* pin;
    std::vector<Entry> pages;
    Date shownAt;
    std::optional<Date> archiveShownAt;  ///< when a change of the archive was shown last
    bool hasReadArchive = false;
};

}  // namespace fleetwise
