#pragma once

#include "fleet/list_rules.h"
#include "ui/base/cost_display.h"
#include "ui/fleet/row_geometry.h"

#include <QBasicTimer>
#include <QListView>
#include <QPersistentModelIndex>

#include <optional>
#include <string>
#include <vector>

namespace fleetwise {

class FleetListModel;
class FleetMonitor;
class SessionRowDelegate;

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

    /// The selected sessions in the list's order. Headings are never selected.
    std::vector<std::string> selectedSessions() const;

signals:
    /// The sessions that the user looks at: the selected ones, else those of the heading that the
    /// keyboard is on. Also sent where they are still the same.
    void sessionsChosen(const std::vector<std::string>& ids);

protected:
    bool viewportEvent(QEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;
    void timerEvent(QTimerEvent* event) override;
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    void selectOnly(const QModelIndex& index);
    void activateRow(const QModelIndex& index);
    bool foldByKey(int key, const QModelIndex& index);
    bool actByKey(int key, const QModelIndex& index);
    void tellChosen();

    /// A button of a row.
    struct Button {
        QPersistentModelIndex row;
        RowAction action = RowAction::act;

        bool operator==(const Button& other) const {
            return row == other.row && action == other.action;
        }
    };
    std::optional<Button> buttonAt(const QPoint& position) const;
    void setPointed(std::optional<Button> button);
    void press(const Button& button);
    QString nameOf(const Button& button) const;
    void openMenu(const QModelIndex& index, const QPoint& globalPosition);

    bool maySeeMotion() const;
    void followActivity();
    void turnRings();

    FleetMonitor& monitor;
    FleetListModel& list;
    SessionRowDelegate* delegate;
    std::optional<Button> pointed;  ///< by the mouse
    std::optional<Button> pressed;
    QBasicTimer turning;
    int step = 0;
};

}  // namespace fleetwise
