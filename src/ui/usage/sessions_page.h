#pragma once

#include "monitor/archive_index.h"
#include "monitor/fleet_monitor.h"
#include "ui/usage/session_usage_model.h"
#include "ui/usage/usage_page.h"

class QLabel;
class QTableView;
class QToolButton;

namespace fleetwise {

class SearchField;

/// What each session used, in a table that is sorted and searched. A row leads to its session.
class SessionsPage final : public UsagePage {
    Q_OBJECT

public:
    /// Monitor and archive outlive this.
    SessionsPage(FleetMonitor& monitor, const ArchiveIndex& archive, QWidget* parent = nullptr);

    Subject subject() const override { return Subject::spending; }
    QString name() const override;
    bool isWanted() const override;
    bool needsArchive() const override { return true; }
    void refresh(Date now) override;
    /// It is a table in any case.
    void setShowsTables(bool) override {}

protected:
    void changeEvent(QEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void layOut();
    void prepareView();
    void fitRows();
    void fitColumns();
    /// Gives the names the room that the other columns leave.
    void stretchNames();
    /// Whether they differ from those before.
    bool showWantedColumns();
    void showSum();
    /// Shown for some seconds, until the user turns to another row; none where it is empty.
    void showMessage(const QString& text);
    void openSortMenu(const QPoint& place);
    /// Brings the session's window to the front, or resumes it.
    void open(const QModelIndex& index);
    FigureTable table() const;

    FleetMonitor& monitor;
    const ArchiveIndex& archive;
    SessionUsageModel model;
    SessionUsageFilter filter;
    SearchField* search;
    QToolButton* exportButton;
    QLabel* summary;
    QTableView* view;
    QLabel* message;
    Date toldAt;  ///< when the message was shown
    bool hasFitted = false;
};

}  // namespace fleetwise
