#include "ui/fleet/fleet_view.h"

#include "ui/base/interface_text.h"
#include "ui/fleet/fleet_list_model.h"
#include "ui/fleet/goal_dialog.h"
#include "ui/fleet/session_menu.h"
#include "ui/fleet/session_row_delegate.h"

#include <QContextMenuEvent>
#include <QHelpEvent>
#include <QKeyEvent>
#include <QPaintEvent>
#include <QStyle>
#include <QTimerEvent>
#include <QToolTip>
#include <QWindow>

#include <algorithm>
#include <utility>

namespace fleetwise {

namespace {

/// A ring turns once in two seconds, in steps that look smooth at its size.
constexpr int stepsPerTurn = 16;
constexpr int stepMilliseconds = 125;

}  // namespace

FleetView::FleetView(FleetMonitor& givenMonitor, FleetListModel& givenModel, QWidget* parent)
    : QListView(parent),
      monitor(givenMonitor),
      list(givenModel),
      delegate(new SessionRowDelegate(this)) {
    setModel(&list);
    setItemDelegate(delegate);
    setFrameShape(QFrame::NoFrame);
    setMouseTracking(true);
    setVerticalScrollMode(ScrollPerPixel);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setResizeMode(Adjust);
    setSelectionMode(ExtendedSelection);
    setAccessibleName(shown("Sitzungen"_text));
    delegate->setActions(SessionRowDelegate::Actions::shown);
    connect(this, &QAbstractItemView::doubleClicked, this, &FleetView::activateRow);
    for (const auto signal :
         {&QAbstractItemModel::rowsInserted, &QAbstractItemModel::rowsRemoved}) {
        connect(&list, signal, this, &FleetView::followActivity);
        connect(&list, signal, this, &FleetView::tellChosen);
    }
    connect(&list, &QAbstractItemModel::dataChanged, this, &FleetView::followActivity);
    connect(selectionModel(), &QItemSelectionModel::selectionChanged, this, &FleetView::tellChosen);
    connect(selectionModel(), &QItemSelectionModel::currentChanged, this, &FleetView::tellChosen);
}

void FleetView::setLook(Density density, GroupMode grouping, const CostDisplay& costs) {
    delegate->setDensity(density);
    delegate->setStateLabels(grouping == GroupMode::status
                                 ? SessionRowDelegate::StateLabels::hidden
                                 : SessionRowDelegate::StateLabels::shown);
    delegate->setCosts(costs);
    scheduleDelayedItemsLayout();
}

void FleetView::selectSomething() {
    const auto isSession = [this](const QModelIndex& index) {
        return index.isValid() && list.row(index).kind == SessionRow::Kind::session;
    };
    if (isSession(currentIndex())) {
        scrollTo(currentIndex());
        return;
    }
    for (int row = 0; row < list.rowCount(); ++row) {
        if (!isSession(list.index(row))) continue;
        selectOnly(list.index(row));
        return;
    }
}

bool FleetView::select(const std::string& sessionId) {
    list.unfoldGroupOf(sessionId);
    const QModelIndex index = list.indexOf(QString::fromStdString(sessionId));
    if (!index.isValid()) return false;
    selectOnly(index);
    scrollTo(index);
    return true;
}

/// Whatever keys are held down meanwhile.
void FleetView::selectOnly(const QModelIndex& index) {
    selectionModel()->setCurrentIndex(index, QItemSelectionModel::ClearAndSelect);
}

void FleetView::activateRow(const QModelIndex& index) {
    if (!index.isValid()) return;
    if (list.row(index).kind == SessionRow::Kind::heading) {
        list.toggleFolded(index);
    } else {
        monitor.activate(list.row(index).key.toStdString());
    }
}

bool FleetView::foldByKey(int key, const QModelIndex& index) {
    if (list.row(index).kind != SessionRow::Kind::heading) return false;
    if (key != Qt::Key_Left && key != Qt::Key_Right && key != Qt::Key_Space) return false;
    list.setFolded(index, key == Qt::Key_Space ? !list.row(index).isFolded : key == Qt::Key_Left);
    return true;
}

bool FleetView::actByKey(int key, const QModelIndex& index) {
    if (key != Qt::Key_F && key != Qt::Key_G && key != Qt::Key_M && key != Qt::Key_Delete)
        return false;
    // On a heading they do nothing, and are not the beginning of a name to go to.
    if (list.row(index).kind == SessionRow::Kind::heading) return true;
    const auto ids = selectedSessions();
    if (key == Qt::Key_G) {
        openGoalDialog(monitor, list.row(index).key.toStdString(), window());
        return true;
    }
    if (key == Qt::Key_F) monitor.toggleFavorites(ids);
    if (key == Qt::Key_M) monitor.toggleNotifyingOf(ids);
    if (key == Qt::Key_Delete) monitor.dismissAll(ids);
    scrollTo(currentIndex());
    return true;
}

std::vector<std::string> FleetView::selectedSessions() const {
    auto rows = selectionModel()->selectedRows();
    std::sort(rows.begin(), rows.end());
    std::vector<std::string> ids;
    for (const QModelIndex& index : rows)
        ids.push_back(list.row(index).key.toStdString());
    return ids;
}

void FleetView::tellChosen() {
    auto ids = selectedSessions();
    if (ids.empty() && currentIndex().isValid()) ids = list.sessionsOf(currentIndex());
    emit sessionsChosen(ids);
}

void FleetView::keyPressEvent(QKeyEvent* event) {
    const QModelIndex index = currentIndex();
    const bool isPlain = (event->modifiers() & ~Qt::KeypadModifier) == Qt::NoModifier;
    if (isPlain && index.isValid()) {
        if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) {
            activateRow(index);
            return;
        }
        if (foldByKey(event->key(), index) || actByKey(event->key(), index)) return;
    }
    QListView::keyPressEvent(event);
}

void FleetView::mousePressEvent(QMouseEvent* event) {
    const bool isLeft = event->button() == Qt::LeftButton;
    pressed = isLeft ? buttonAt(event->position().toPoint()) : std::nullopt;
    if (pressed) return;
    const QModelIndex index = indexAt(event->position().toPoint());
    const bool isHeading = index.isValid() && list.row(index).kind == SessionRow::Kind::heading;
    if (!isHeading) {
        QListView::mousePressEvent(event);
    } else if (isLeft) {
        // What is selected stays so.
        selectionModel()->setCurrentIndex(index, QItemSelectionModel::NoUpdate);
        list.toggleFolded(index);
    }
}

void FleetView::mouseReleaseEvent(QMouseEvent* event) {
    const auto begun = std::exchange(pressed, std::nullopt);
    if (!begun) return QListView::mouseReleaseEvent(event);
    if (begun == buttonAt(event->position().toPoint())) press(*begun);
}

void FleetView::mouseDoubleClickEvent(QMouseEvent* event) {
    const QModelIndex index = indexAt(event->position().toPoint());
    const bool isHeading = index.isValid() && list.row(index).kind == SessionRow::Kind::heading;
    // Two quick clicks on a heading are just that; on a button the first one was enough.
    if (isHeading) return mousePressEvent(event);
    if (buttonAt(event->position().toPoint())) return;
    QListView::mouseDoubleClickEvent(event);
}

void FleetView::mouseMoveEvent(QMouseEvent* event) {
    setPointed(buttonAt(event->position().toPoint()));
    if (!pressed) QListView::mouseMoveEvent(event);
}

bool FleetView::viewportEvent(QEvent* event) {
    if (event->type() == QEvent::Leave) setPointed({});
    if (event->type() == QEvent::ToolTip) {
        auto* help = static_cast<QHelpEvent*>(event);
        if (const auto button = buttonAt(help->pos())) {
            QToolTip::showText(help->globalPos(), nameOf(*button), viewport());
            return true;
        }
    }
    return QListView::viewportEvent(event);
}

std::optional<FleetView::Button> FleetView::buttonAt(const QPoint& position) const {
    const QModelIndex index = indexAt(position);
    if (!index.isValid() || list.row(index).kind == SessionRow::Kind::heading) return {};
    QStyleOptionViewItem option;
    initViewItemOption(&option);
    const RowActions places = delegate->actionsOf(option, visualRect(index));
    if (places.act.contains(position)) return Button{index, RowAction::act};
    if (places.menu.contains(position)) return Button{index, RowAction::menu};
    return {};
}

void FleetView::setPointed(std::optional<Button> button) {
    if (pointed == button) return;
    for (const auto& each : {pointed, button}) {
        if (each) viewport()->update(visualRect(each->row));
    }
    pointed = std::move(button);
    delegate->setPointedAction(pointed ? std::optional(pointed->action) : std::nullopt);
}

void FleetView::press(const Button& button) {
    if (button.action == RowAction::act) return activateRow(button.row);
    QStyleOptionViewItem option;
    initViewItemOption(&option);
    const QRect place = delegate->actionsOf(option, visualRect(button.row)).menu;
    openMenu(button.row, viewport()->mapToGlobal(place.bottomLeft()));
}

QString FleetView::nameOf(const Button& button) const {
    if (button.action == RowAction::menu) return shown("Menü"_text);
    return list.row(button.row).isLive ? shown("Fenster nach vorn"_text) : shown("Fortsetzen"_text);
}

/// Of all that are selected where the session is one of them.
void FleetView::openMenu(const QModelIndex& index, const QPoint& globalPosition) {
    const bool isSelected = selectionModel()->isSelected(index);
    showSelectionMenu(monitor, isSelected ? selectedSessions() : list.sessionsOf(index), this,
                      globalPosition);
}

void FleetView::contextMenuEvent(QContextMenuEvent* event) {
    const bool isByKey = event->reason() == QContextMenuEvent::Keyboard;
    const QModelIndex index = isByKey ? currentIndex() : indexAt(event->pos());
    if (!index.isValid() || list.row(index).kind == SessionRow::Kind::heading) return;
    openMenu(index,
             isByKey ? viewport()->mapToGlobal(visualRect(index).center()) : event->globalPos());
}

void FleetView::showEvent(QShowEvent* event) {
    QListView::showEvent(event);
    followActivity();
}

void FleetView::hideEvent(QHideEvent* event) {
    QListView::hideEvent(event);
    turning.stop();
}

bool FleetView::event(QEvent* event) {
    const bool isHandled = QListView::event(event);
    if (event->type() == QEvent::WindowActivate || event->type() == QEvent::WindowDeactivate) {
        followActivity();
    }
    return isHandled;
}

/// Rings turn only where the user may be looking, and only while something works.
bool FleetView::maySeeMotion() const {
    const QWindow* surface = window()->windowHandle();
    return isVisible() && isActiveWindow() && !window()->isMinimized() && surface != nullptr &&
           surface->isExposed() &&
           style()->styleHint(QStyle::SH_Widget_Animation_Duration, nullptr, this) > 0;
}

void FleetView::followActivity() {
    const bool turns = monitor.workingCount() > 0 && maySeeMotion();
    if (turns && !turning.isActive()) turning.start(stepMilliseconds, Qt::CoarseTimer, this);
    if (!turns) turning.stop();
}

void FleetView::timerEvent(QTimerEvent* event) {
    if (event->timerId() == turning.timerId()) {
        turnRings();
    } else {
        QListView::timerEvent(event);
    }
}

/// A view paints all rows between the first and the last one that a frame touches; most of them,
/// and all but the ring of the others, are still there.
void FleetView::paintEvent(QPaintEvent* event) {
    delegate->setPaintedRegion(event->region());
    QListView::paintEvent(event);
}

void FleetView::turnRings() {
    if (!maySeeMotion()) {
        turning.stop();
        return;
    }
    step = (step + 1) % stepsPerTurn;
    delegate->setTurn(static_cast<double>(step) / stepsPerTurn);
    QStyleOptionViewItem option;
    initViewItemOption(&option);
    const int bottom = viewport()->height();
    QModelIndex index = indexAt({0, 0});
    for (int row = index.isValid() ? index.row() : 0; row < list.rowCount(); ++row) {
        index = list.index(row);
        const QRect area = visualRect(index);
        if (area.top() > bottom) return;
        const SessionRow& session = list.row(index);
        if (session.kind == SessionRow::Kind::session && session.state == SessionState::working) {
            viewport()->update(delegate->glyphRect(option, area));
        }
    }
}

}  // namespace fleetwise
