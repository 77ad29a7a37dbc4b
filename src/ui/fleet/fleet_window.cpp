#include "ui/fleet/fleet_window.h"

#include "foundation/brand.h"
#include "ui/base/elided_label.h"
#include "ui/base/interface_text.h"
#include "ui/base/theme.h"
#include "ui/details/details_pane.h"
#include "ui/fleet/cost_footer.h"
#include "ui/fleet/filter_bar.h"
#include "ui/fleet/fleet_list_model.h"
#include "ui/fleet/fleet_view.h"
#include "ui/fleet/goal_dialog.h"
#include "ui/fleet/hook_banner.h"
#include "ui/fleet/list_division.h"
#include "ui/fleet/session_menu.h"
#include "ui/fleet/window_keys.h"
#include "ui/quota/quota_strip.h"

#include <QApplication>
#include <QBoxLayout>
#include <QCloseEvent>
#include <QLabel>
#include <QScreen>
#include <QShortcut>

#include <algorithm>
#include <chrono>
#include <numeric>
#include <utility>

namespace fleetwise {

namespace {

constexpr QSize initialSize(1000, 680);
constexpr double largestShare = 0.9;  ///< of the screen, for the initial size
constexpr std::chrono::seconds tellingTime(10);

// Of a window that has room for the details beside the list.
constexpr int leastDividedWidth = 760;
constexpr int leastWindowCharacters = 100;

}  // namespace

FleetWindow::FleetWindow(FleetMonitor& givenMonitor, FleetListModel& givenModel)
    : monitor(givenMonitor),
      model(givenModel),
      filterBar(new FilterBar(monitor)),
      view(new FleetView(monitor, model)),
      empty(new QLabel),
      lists(new QWidget),
      details(new DetailsPane(monitor)),
      division(new ListDivision(lists, details)),
      footer(new ElidedLabel) {
    setWindowTitle(QString::fromUtf8(Brand::bundleName.data(), Brand::bundleName.size()));
    setObjectName(QStringLiteral("fleet"));
    layOut();
    addShortcuts();
    tellingEnds.setSingleShot(true);
    tellingEnds.setInterval(tellingTime);
    connect(&tellingEnds, &QTimer::timeout, this, &FleetWindow::showSummary);
    restoreGeometryOnce();
    settingsChanged();
    fleetChanged();
    monitor.addObserver(*this);
}

FleetWindow::~FleetWindow() {
    if (isVisible()) storeGeometry();
    monitor.removeObserver(*this);
}

void FleetWindow::layOut() {
    empty->setAlignment(Qt::AlignCenter);
    empty->setWordWrap(true);
    empty->setMargin(2 * Metrics::groupGap);
    auto* quota = new QuotaStrip(monitor);
    connect(quota, &QuotaStrip::clicked, this, &FleetWindow::usageWanted);
    connect(filterBar, &FilterBar::usageWanted, this, &FleetWindow::usageWanted);
    connect(filterBar, &FilterBar::archiveWanted, this, &FleetWindow::archiveWanted);
    connect(filterBar, &FilterBar::settingsWanted, this, &FleetWindow::settingsWanted);
    connect(filterBar, &FilterBar::detailsToggled, this, &FleetWindow::toggleDetails);
    layOutLists();
    connectDetails();
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(filterBar);
    layout->addWidget(quota);
    layout->addWidget(new HookBanner(monitor));
    layout->addWidget(division, 1);
    layout->addLayout(makeFoot());
    setTabOrder(filterBar, quota);
    setTabOrder(quota, view);
    setTabOrder(view, details);
}

void FleetWindow::layOutLists() {
    auto* column = new QVBoxLayout(lists);
    column->setContentsMargins(0, 0, 0, 0);
    for (QWidget* widget : {static_cast<QWidget*>(view), static_cast<QWidget*>(empty)})
        column->addWidget(widget);
    division->setPaneWidth(static_cast<int>(monitor.settings().get(Settings::detailsWidth)));
}

QLayout* FleetWindow::makeFoot() {
    auto* costs = new CostFooter(monitor);
    for (QLabel* label : {footer, static_cast<QLabel*>(costs)})
        label->setForegroundRole(QPalette::PlaceholderText);
    auto* foot = new QHBoxLayout;
    foot->setContentsMargins(Metrics::margin, Metrics::grid, Metrics::margin, Metrics::grid);
    foot->setSpacing(Metrics::groupGap);
    foot->addWidget(footer);
    foot->addWidget(costs, 1);
    return foot;
}

void FleetWindow::connectDetails() {
    connect(view, &FleetView::sessionsChosen, details, &DetailsPane::setSessions);
    connect(details, &DetailsPane::menuWanted, this,
            [this](const std::string& id, const QPoint& position) {
                showSessionMenu(monitor, id, this, position);
            });
    connect(details, &DetailsPane::goalWanted, this,
            [this](const std::string& id) { openGoalDialog(monitor, id, this); });
}

bool FleetWindow::hasRoomForDetails() const {
    return width() >=
           std::max(leastDividedWidth, fontMetrics().averageCharWidth() * leastWindowCharacters);
}

void FleetWindow::showDetails() {
    division->setPaneVisible(monitor.settings().get(Settings::showsDetails) &&
                             hasRoomForDetails() && !view->isHidden());
}

void FleetWindow::toggleDetails() {
    const bool isWanted = monitor.settings().get(Settings::showsDetails);
    monitor.change(Settings::showsDetails, !isWanted);
    if (!isWanted && !hasRoomForDetails()) {
        tell(shown("Für die Details ist das Fenster zu schmal. Zieh es breiter."_text));
    }
}

void FleetWindow::addShortcuts() {
    const auto add = [this](const QKeySequence& keys, auto action) {
        connect(new QShortcut(keys, this), &QShortcut::activated, this, action);
    };
    add(QKeySequence::Find, [this] { filterBar->focusSearch(); });
    add(QKeySequence::Refresh, [this] { monitor.refresh(); });
    add(usageKey, [this] { emit usageWanted(); });
    add(archiveKey, [this] { emit archiveWanted(); });
    add(settingsKey, [this] { emit settingsWanted(); });
    add(detailsKey, [this] { toggleDetails(); });
    add(QKeySequence::Close, [this] { close(); });
    add(QKeySequence(Qt::CTRL | Qt::Key_Q), [] { QApplication::exit(); });
    connect(filterBar, &FilterBar::leftSearch, this, [this] {
        view->setFocus(Qt::ShortcutFocusReason);
        view->selectSomething();
    });
}

void FleetWindow::restoreGeometryOnce() {
    const std::string stored = monitor.settings().get(Settings::windowGeometry);
    if (restoreGeometry(QByteArray::fromBase64(QByteArray::fromStdString(stored)))) return;
    resize(initialSize.boundedTo(screen()->availableSize() * largestShare));
}

void FleetWindow::storeGeometry() {
    monitor.store(Settings::windowGeometry, saveGeometry().toBase64().toStdString());
    monitor.store(Settings::detailsWidth, division->paneWidth());
}

void FleetWindow::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    showDetails();
}

void FleetWindow::hideEvent(QHideEvent* event) {
    storeGeometry();
    QWidget::hideEvent(event);
}

void FleetWindow::closeEvent(QCloseEvent* event) {
    // Whoever ends the desktop's session must not be held up.
    if (whenClosed == Closing::minimises && !qApp->isSavingSession()) {
        event->ignore();
        showMinimized();
    } else {
        QWidget::closeEvent(event);
    }
}

void FleetWindow::bringUp() {
    setWindowState(windowState() & ~Qt::WindowMinimized);
    show();
    raise();
    activateWindow();
    view->setFocus();
}

void FleetWindow::sessionRequested(const std::string& id) {
    bringUp();
    if (view->select(id) || monitor.session(id) == nullptr) return;
    filterBar->clearSearch();
    if (view->select(id)) return;
    monitor.change(Settings::activeFilters, {});
    view->select(id);
}

void FleetWindow::settingsChanged() {
    view->setLook(densityFrom(monitor.settings().get(Settings::density)),
                  monitor.settings().listRules().groupMode, costDisplay(monitor.settings()));
    showDetails();
}

void FleetWindow::fleetChanged() {
    const bool isEmpty = monitor.groups().empty();
    const bool begins = !isEmpty && view->isHidden() && monitor.search().empty();
    view->setVisible(!isEmpty);
    if (begins) view->setFocus();
    if (begins) view->selectSomething();
    if (std::exchange(shownSearch, monitor.search()) != monitor.search()) view->scrollToTop();
    empty->setVisible(isEmpty);
    if (isEmpty) empty->setText(emptyText());
    showDetails();
    if (!tellingEnds.isActive()) showSummary();
}

void FleetWindow::hookChanged() {
    const auto before = std::exchange(shownHookState, monitor.hookState());
    if (before == FleetMonitor::HookState::missing &&
        shownHookState == FleetMonitor::HookState::installed) {
        tell(shown(
            "Der Hook ist eingerichtet. Neue Sitzungen melden sich von jetzt an sofort."_text));
    }
}

void FleetWindow::tell(const QString& message) {
    footer->setText(message);
    tellingEnds.start();
}

void FleetWindow::showSummary() {
    std::vector<std::size_t> all(monitor.sessions().size());
    std::iota(all.begin(), all.end(), std::size_t{0});
    QString text = qtText(stateSummary(monitor.sessions(), all));
    if (monitor.isLate()) {
        text = shown("Stand von %@, eine Datei antwortet nicht"_text,
                     formatDate(monitor.lastRefresh(), monitor.calendar(), "%H:%M:%S")) +
               QStringLiteral(" · ") + text;
    }
    footer->setText(text);
}

QString FleetWindow::emptyText() const {
    if (!monitor.hasCollected()) return shown("Die Sitzungen werden gesucht …"_text);
    if (!monitor.sessions().empty()) {
        return shown("Keine Sitzung passt zu Suche und Filtern."_text);
    }
    return shown(
        "Noch keine Sitzung. Starte Claude Code oder Codex in einem Terminal, dann erscheint sie hier."_text);
}

}  // namespace fleetwise
