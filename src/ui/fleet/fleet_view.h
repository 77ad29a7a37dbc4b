#pragma once

#include "fleet/list_rules.h"
#include "ui/base/cost_display.h"
#include "ui/fleet/row_geometry.h"

#include <QBasicTimer>
#include <QListView>

namespace fleetwise {

class FleetListModel;
class FleetMonitor;

/// The list of sessions: what the keyboard and the mouse do in it, and the signs of life of those
/// that work.
class FleetView final : public QListView {
    Q_OBJECT

public:
    /// The monitor and the model outlive this.
    FleetView(FleetMonitor& monitor, FleetListModel& model, QWidget* parent = nullptr);

    /// Follows the settings.
    void setLook(Density density, GroupMode grouping, const CostDisplay& costs);

    /// Selects the first session where none is selected, and scrolls to the selected one.
    void selectSomething();

    /// Selects the session's row and scrolls to it, unfolding its group; whether it is listed.
    bool select(const std::string& sessionId);

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;
    void timerEvent(QTimerEvent* event) override;
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    void activateRow(const QModelIndex& index);
    bool foldByKey(int key, const QModelIndex& index);
    bool actByKey(int key, const QModelIndex& index);
    void showMenu(const QModelIndex& index, const QPoint& position);
    bool maySeeMotion() const;
    void followActivity();
    void turnRings();

    FleetMonitor& monitor;
    FleetListModel& list;
    SessionRowDelegate* delegate;
    QBasicTimer turning;
    int step = 0;
};

}  // namespace fleetwise
