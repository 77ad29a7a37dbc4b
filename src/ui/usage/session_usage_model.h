#pragma once

#include "fleet/session_usage.h"

#include <QAbstractTableModel>
#include <QSortFilterProxyModel>

#include <array>
#include <string>
#include <vector>

namespace fleetwise {

/// The sessions of the usage window, a column for each SessionColumn. Rows that stay keep their
/// place for who has selected them.
class SessionUsageModel final : public QAbstractTableModel {
    Q_OBJECT

public:
    using QAbstractTableModel::QAbstractTableModel;

    /// Ascending by id.
    void setSessions(std::vector<SessionUsage> sessions);
    void setRules(SessionCellRules newRules);

    const SessionUsage& session(int row) const { return rowAt(row).session; }
    const SessionCellRules& rules() const { return cellRules; }
    /// Name, folder, agent, model and id, folded for searching.
    const std::string& searchText(int row) const { return rowAt(row).folded; }
    /// What a column without figures says.
    const QString& text(int row, SessionColumn column) const {
        return rowAt(row).texts.at(static_cast<std::size_t>(column));
    }

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

private:
    struct Row {
        SessionUsage session;
        std::string folded;
        std::array<QString, 4> texts;  ///< of the first columns, which have no figures
    };

    const Row& rowAt(int row) const { return rows[static_cast<std::size_t>(row)]; }
    static Row made(SessionUsage session);
    QString tooltip(const SessionUsage& session) const;
    void removeGone(const std::vector<SessionUsage>& wanted);
    void insertNew(const std::vector<SessionUsage>& wanted);
    void updateContents(std::vector<SessionUsage> wanted);

    std::vector<Row> rows;
    SessionCellRules cellRules;
};

/// Those of them that a search finds, sorted by a column.
class SessionUsageFilter final : public QSortFilterProxyModel {
    Q_OBJECT

public:
    explicit SessionUsageFilter(SessionUsageModel& given, QObject* parent = nullptr);

    /// All of its words must occur.
    void setSearch(const QString& text);

    const SessionUsage& session(int row) const {
        return sessions.session(mapToSource(index(row, 0)).row());
    }

protected:
    bool filterAcceptsRow(int row, const QModelIndex& parent) const override;
    bool lessThan(const QModelIndex& left, const QModelIndex& right) const override;

private:
    const SessionUsageModel& sessions;
    std::vector<std::string> words;
};

}  // namespace fleetwise
