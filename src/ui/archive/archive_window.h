#pragma once

#include "monitor/archive_index.h"
#include "monitor/fleet_monitor.h"

#include <QTimer>
#include <QWidget>

#include <optional>
#include <string>
#include <vector>

class QLabel;
class QLineEdit;

namespace fleetwise {

class ArchiveModel;
class ArchivePreview;
class ArchiveView;
class ChipButton;

/// The window "Vorige Sitzungen": everything that the agents have left behind, to be found again
/// and resumed. Has the archive read only while it can be seen.
class ArchiveWindow final : public QWidget,
                            private ArchiveIndex::Observer,
                            private FleetMonitor::Observer {
    Q_OBJECT

public:
    /// Both outlive this.
    ArchiveWindow(FleetMonitor& givenMonitor, ArchiveIndex& givenIndex);
    ~ArchiveWindow() override;

    /// Shows the window in front of all others, ready to search.
    void bringUp();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    void changeEvent(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    void archiveChanged() override;
    void fleetChanged() override;
    void costsChanged() override;
    void settingsChanged() override;

    void layOut();
    void addShortcuts();
    void restoreGeometryOnce();
    bool canBeSeen() const { return isVisible() && !isMinimized(); }
    void refreshOnceInAWhile();
    void chooseAgents();
    void listChanged();
    void showPreview();
    void sumSoon();
    void showSummary();
    const QString& costOfAll();
    void tell(const QString& message);
    QString emptyText() const;

    FleetMonitor& monitor;
    ArchiveIndex& index;
    ArchiveModel* model;
    QLineEdit* search;
    ChipButton* claude;
    ChipButton* codex;
    ArchiveView* view;
    ArchivePreview* preview;
    QLabel* empty;
    QLabel* summary;
    QLabel* progress;
    QTimer summing;  ///< waits for a pause in typing
    QTimer tellingEnds;
    QTimer resting;  ///< between two listings
    bool isRefreshWanted = false;
    std::vector<std::string> pricedIds;  ///< what `priced` is the cost of
    std::optional<QString> priced;       ///< nothing once costs or settings have changed
};

}  // namespace fleetwise
