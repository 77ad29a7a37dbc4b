#pragma once

#include "monitor/fleet_monitor.h"
#include "reactions/action_runner.h"

#include <QAbstractTableModel>

#include <deque>
#include <functional>

namespace fleetwise {

/// What state actions ran, the newest first.
class ActionLogModel final : public QAbstractTableModel {
    Q_OBJECT

public:
    enum Column { time, state, session, program, ending, columns };

    /// The monitor outlives this; it names the sessions.
    ActionLogModel(const FleetMonitor& monitor, std::function<Date()> now,
                   QWidget* glyphOwner = nullptr);

    /// Follows the log of an ActionRunner.
    void update(const std::deque<ActionRunner::Entry>& log);

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

private:
    struct Run {
        ActionRunner::Entry entry;
        QString session;  ///< its name while it is listed, which it may not be for long
    };

    void dropGone(const std::deque<ActionRunner::Entry>& log);
    Run run(const ActionRunner::Entry& entry) const;
    QString text(const Run& logged, int column) const;

    const FleetMonitor& monitor;
    std::function<Date()> now;
    const QWidget* glyphOwner;
    std::deque<Run> runs;  ///< the newest first
};

}  // namespace fleetwise
