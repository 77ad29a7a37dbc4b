#pragma once

#include "monitor/fleet_monitor.h"
#include "ui/base/cost_display.h"
#include "ui/fleet/session_row.h"

#include <QAbstractListModel>

#include <functional>
#include <map>
#include <vector>

namespace fleetwise {

/// The grouped sessions as one list: each heading, and below it its sessions unless it is folded.
/// Follows the monitor with inserted, removed, moved and changed rows, never with a reset, so that
/// selection and scrolling stay where they are.
class FleetListModel final : public QAbstractListModel, private FleetMonitor::Observer {
    Q_OBJECT

public:
    enum Role {
        rowRole = Qt::UserRole,  ///< the whole SessionRow
        keyRole,                 ///< SessionRow::key
        headingRole,             ///< whether it is a heading
    };

    /// `groups` gives the groups over the monitor's sessions to show. The monitor outlives this.
    FleetListModel(FleetMonitor& monitor, std::function<std::vector<SessionGroup>()> groups,
                   QObject* parent = nullptr);
    ~FleetListModel() override;

    int rowCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    Qt::ItemFlags flags(const QModelIndex& index) const override;

    /// The row of a session or of a group's heading; invalid where it is not shown.
    QModelIndex indexOf(const QString& key) const;

    const SessionRow& row(const QModelIndex& index) const;

    /// The ids of a heading's sessions, folded or not; the id of a session's row.
    std::vector<std::string> sessionsOf(const QModelIndex& index) const;

    /// Folds or unfolds a heading.
    void toggleFolded(const QModelIndex& heading);
    void setFolded(const QModelIndex& heading, bool isFolded);

    /// Unfolds the group that the session is in, where it is listed at all.
    void unfoldGroupOf(const std::string& sessionId);

private:
    void fleetChanged() override { update(); }
    void clockTicked() override { updateTimes(); }
    void settingsChanged() override;
    void costsChanged() override { update(); }
    void usageChanged() override { update(); }

    void update();
    /// Brings running times up to date; those of ended sessions only once a minute.
    void updateTimes();
    SessionRow rowOf(const Session& session) const;
    SessionRow headingOf(const SessionGroup& group) const;
    /// With what the row's sessions cost, which is worked out only where the pointer rests.
    QString tooltipOf(const QModelIndex& index) const;
    std::vector<std::string> idsOf(const SessionGroup& group) const;
    std::vector<SessionRow> rowsNow() const;
    bool isFolded(const SessionGroup& group) const;
    void removeGone(const std::vector<SessionRow>& wanted);
    void arrange(const std::vector<SessionRow>& wanted);
    void moveHere(int position, const QString& identity);
    void updateContents(std::vector<SessionRow> wanted);
    void replace(std::size_t position, SessionRow row);

    FleetMonitor& monitor;
    std::function<std::vector<SessionGroup>()> groups;
    CostDisplay costs;
    std::vector<SessionRow> rows;
    Date updatedAt;                      ///< when all rows were made
    std::map<std::string, bool> folded;  ///< by group key, where the user has decided
};

}  // namespace fleetwise
