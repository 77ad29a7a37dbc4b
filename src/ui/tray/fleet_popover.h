#pragma once

#include "ui/quota/quota_lines.h"

#include <QElapsedTimer>
#include <QLabel>
#include <QListView>
#include <QTimer>
#include <QWidget>

class QBoxLayout;
class QToolButton;

namespace fleetwise {

class FlowLayout;

/// What to tell where there is no session to show.
enum class FleetHint {
    startAgent,
    installHook,  ///< the agents would not tell us when they need the user
};

/// What the mark opens: the sessions on one small sheet, which closes as soon as the user turns to
/// something else. It is as high as its rows ask for, and as wide as its font. Main thread; needs a
/// QApplication.
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
    /// The menu of a row, with the right button or the menu key.
    void menuWanted(const QModelIndex& index, const QPoint& globalPosition);
    void windowWanted();
    void usageWanted();
    void settingsWanted();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void changeEvent(QEvent* event) override;
    void childEvent(QChildEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    void buildContents(QAbstractItemModel& model, QAbstractItemDelegate& delegate);
    QWidget* makeEmptyState();
    QWidget* makeFooter();
    QToolButton* makeButton(const QString& text, void (FleetPopover::*wanted)());
    void followModel(const QAbstractItemModel& model);
    void fitToContents();
    /// Puts the sum above the buttons where it would be cut beside them.
    void fitFooter(int width);
    int rowsHeight() const;
    void askForMenu(const QPoint& place);
    /// The user may have turned away while a menu was open, which changeEvent does not tell.
    void hideIfLeft();

    /// Down and Up, while no row is selected, begin at the first and the last one.
    bool selectFromOutside(int key);

    QRect anchor;
    QuotaLines* quota = nullptr;
    QListView* list = nullptr;
    QWidget* emptyState = nullptr;
    QLabel* emptyHint = nullptr;
    QLabel* costs = nullptr;
    QBoxLayout* footer = nullptr;
    FlowLayout* buttons = nullptr;
    QTimer fitting;  ///< gathers the model's changes until the event loop is back
    QElapsedTimer sinceClosing;
};

}  // namespace fleetwise
