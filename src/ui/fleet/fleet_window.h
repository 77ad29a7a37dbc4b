#pragma once

#include "monitor/fleet_monitor.h"

#include <QTimer>
#include <QWidget>

class QLabel;
class QLayout;

namespace fleetwise {

class DetailsPane;
class FilterBar;
class FleetListModel;
class FleetView;
class ListDivision;

/// The main window: the whole fleet, grouped, filtered and searched, and the details of what is
/// selected.
class FleetWindow final : public QWidget, private FleetMonitor::Observer {
    Q_OBJECT

public:
    /// What closing the window does: without a tray it must not vanish.
    enum class Closing { hides, minimises };

    /// The monitor and the model outlive this.
    FleetWindow(FleetMonitor& monitor, FleetListModel& model);
    ~FleetWindow() override;

    void setClosing(Closing closing) { whenClosed = closing; }

    /// Shows the window in front of all others.
    void bringUp();

    /// Says something at the foot of the window for ten seconds.
    void tell(const QString& message);

signals:
    // The window of that name is to be shown.
    void usageWanted();
    void archiveWanted();
    void settingsWanted();

protected:
    void closeEvent(QCloseEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    void fleetChanged() override;
    void settingsChanged() override;
    void hookChanged() override;
    void windowRequested() override { bringUp(); }
    void sessionRequested(const std::string& id) override;

    void layOut();
    void layOutLists();
    QLayout* makeFoot();
    void connectDetails();
    void addShortcuts();
    void toggleDetails();
    /// Details stand beside the list only where both have room.
    bool hasRoomForDetails() const;
    void showDetails();
    void restoreGeometryOnce();
    void storeGeometry();
    void showSummary();
    QString emptyText() const;

    FleetMonitor& monitor;
    FleetListModel& model;
    FilterBar* filterBar;
    FleetView* view;
    QLabel* empty;
    QWidget* lists;
    DetailsPane* details;
    ListDivision* division;
    QLabel* footer;
    QTimer tellingEnds;
    std::string shownSearch;
    FleetMonitor::HookState shownHookState = FleetMonitor::HookState::unknown;
    Closing whenClosed = Closing::hides;
};

}  // namespace fleetwise
