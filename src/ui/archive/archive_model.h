#pragma once

#include "monitor/archive_index.h"
#include "monitor/fleet_monitor.h"
#include "ui/archive/archive_days.h"
#include "ui/archive/archive_search.h"

#include <QAbstractTableModel>

#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

namespace fleetwise {

/// The sessions of the archive that match what is looked for, in the order that is asked for.
class ArchiveModel final : public QAbstractTableModel,
                           private ArchiveIndex::Observer,
                           private FleetMonitor::Observer {
    Q_OBJECT

public:
    enum Column { nameColumn, projectColumn, dateColumn, sizeColumn, costColumn, columnEnd };
    enum class Agents { all, claude, codex };

    struct Totals {
        std::size_t sessions = 0;
        std::uint64_t bytes = 0;
    };

    /// Both outlive this.
    ArchiveModel(FleetMonitor& givenMonitor, ArchiveIndex& givenIndex);
    ~ArchiveModel() override;

    /// Active at first. While it is not, rows and amounts may be out of date.
    void setActive(bool isNowActive);
    void setSearch(const QString& query);
    void setAgents(Agents wanted);
    bool isFiltered() const { return !search.isEmpty() || agents != Agents::all; }

    /// Null where the session has gone from the archive since.
    const ArchiveEntry* entry(const QModelIndex& index) const;
    QModelIndex indexOf(const std::string& id) const;
    /// In the order of the rows.
    std::vector<std::string> ids() const;
    Totals totals() const;
    /// The state of a session that runs.
    std::optional<SessionState> liveState(const std::string& id) const;

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;
    /// The first time by date, the latest first.
    void sort(int column, Qt::SortOrder order) override;

signals:
    /// Rows are about to come, go and move. What is selected may be lost.
    void aboutToUpdate();
    void updated();

private:
    struct Row {
        std::string id;
        ArchiveDays::Time time;
    };

    void archiveChanged() override { update(); }
    void costsChanged() override;
    void settingsChanged() override { costsChanged(); }
    void fleetChanged() override;
    void clockTicked() override;

    void update();
    std::vector<Row> matching();
    void arrange(std::vector<std::size_t>& places);
    void replaceRows(std::vector<Row> rows);
    void rowsDiffer(Column first, Column last);
    const Money& money(const std::string& id) const;
    QString shownText(const Row& row, const ArchiveEntry& entry, int column) const;
    QString spokenText(const Row& row, const ArchiveEntry& entry, int column) const;
    QString toolTip(const ArchiveEntry& entry, int column) const;

    FleetMonitor& monitor;
    ArchiveIndex& archive;
    ArchiveDays days;
    ArchiveSearch search;
    Agents agents = Agents::all;
    bool isActive = true;
    bool isStale = false;
    Column sortColumn = dateColumn;
    Qt::SortOrder sortOrder = Qt::DescendingOrder;
    std::vector<Row> shownRows;
    mutable std::unordered_map<std::string, Money> amounts;  ///< of the rows that were asked for
};

}  // namespace fleetwise
