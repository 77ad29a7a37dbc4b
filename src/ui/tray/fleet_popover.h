#pragma once

#include "ui/quota/quota_lines.h"

#include <QElapsedTimer>
#include <QLabel>
#include <QListView>
#include <QTimer>
#include <QWidget>

namespace fleetwise {

/// What to tell where there is no session to show.
enum class FleetHint {
    startAgent,
    installHook,  ///< the agents would not tell us when they need the user
};

/// What the mark opens: the sessions on one small sheet, which closes as soon as the user turns to
/// something else. It is as high as its rows ask for. Main thread; needs a QApplication.
class FleetPopover final : public QWidget {
    Q_OBJECT

public:
    /// Shows `model` in one column, painted by `delegate`; both must outlive this.
    FleetPopover(QAbstractItemModel& model, QAbstractItemDelegate& delegate);

    void setQuota(const QuotaFigures& figures);
    void setHint(FleetHint hint);

    /// What today's work costs, in short and explained; empty where nothing is to be told.
    void setCosts(const QString& text, const QString& explanation);

    /// Opens beside `anchor` on the screen that it is on, as popoverRect places it; closes if it
    /// is open, or was until this very click.
    void toggle(const QRect& anchor);

    /// Scrolls so that a heading and what it was unfolded to can be seen.
    void reveal(const QModelIndex& heading);

signals:
    /// Will open; what is shown only while it can be seen is to be brought up to date.
    void opening();
    /// A row was clicked or confirmed with Enter.
    void activated(const QModelIndex& index);
    void windowWanted();
    void usageWanted();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void changeEvent(QEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    void buildContents(QAbstractItemModel& model, QAbstractItemDelegate& delegate);
    QWidget* makeEmptyState();
    QWidget* makeFooter();
    QWidget* makeButton(const QString& text, void (FleetPopover::*wanted)());
    void followModel(const QAbstractItemModel& model);
    void fitToContents();
    int rowsHeight() const;

    /// Down and Up, while no row is selected, begin at the first and the last one.
    bool selectFromOutside(int key);

    QRect anchor;
    QuotaLines* quota = nullptr;
    QListView* list = nullptr;
    QWidget* emptyState = nullptr;
    QLabel* emptyHint = nullptr;
    QLabel* costs = nullptr;
    QTimer fitting;  ///< gathers the model's changes until the event loop is back
    QElapsedTimer sinceClosing;
};

}  // namespace fleetwise
