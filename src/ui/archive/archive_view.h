#pragma once

#include "monitor/fleet_monitor.h"

#include <QTableView>

#include <string>
#include <vector>

class QMenu;

namespace fleetwise {

class ArchiveModel;
struct ArchiveEntry;

/// The table of past sessions, with what can be done to them. What is selected stays so when rows
/// come and go.
class ArchiveView final : public QTableView {
    Q_OBJECT

public:
    /// Both outlive this.
    ArchiveView(FleetMonitor& givenMonitor, ArchiveModel& givenModel);

    /// The session that the keys work on; null for none.
    const ArchiveEntry* currentEntry() const;
    void selectSomething();
    void setShowsCosts(bool showsCosts);

    /// Resumes the current session, or brings the window of one that runs to the front.
    void activateCurrent();

signals:
    /// Another session became the current one; not where what is known of it changed.
    void currentEntryChanged();
    /// Something to tell the user, such as why nothing could be done.
    void told(const QString& message);

protected:
    void contextMenuEvent(QContextMenuEvent* event) override;
    void changeEvent(QEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void currentChanged(const QModelIndex& current, const QModelIndex& previous) override;

private:
    void addKeys();
    void addSortMenu(QMenu& menu);
    void fitToFont();
    void fitColumns();
    void rememberSelection();
    void restoreSelection();
    std::vector<const ArchiveEntry*> selectedEntries() const;
    void copyCommands();
    void copyEach(std::string (*text)(const ArchiveEntry&));

    FleetMonitor& monitor;
    ArchiveModel& list;
    std::vector<std::string> rememberedIds;
    std::string rememberedCurrent;
};

}  // namespace fleetwise
