#include "ui/fleet/fleet_window.h"

#include "foundation/brand.h"
#include "ui/base/elided_label.h"
#include "ui/base/interface_text.h"
#include "ui/base/theme.h"
#include "ui/fleet/cost_footer.h"
#include "ui/fleet/filter_bar.h"
#include "ui/fleet/fleet_list_model.h"
#include "ui/fleet/fleet_view.h"
#include "ui/fleet/hook_banner.h"
#include "ui/quota/quota_strip.h"

#include <QApplication>
#include <QBoxLayout>
#include <QCloseEvent>
#include <QLabel>
#include <QScreen>
#include <QShortcut>

#include <chrono>
#include <numeric>
#include <utility>

namespace fleetwise {

namespace {

constexpr QSize initialSize(1000, 680);
constexpr double largestShare = 0.9;  ///< of the screen, for the initial size
constexpr std::chrono::seconds tellingTime(10);

}  // namespace

FleetWindow::FleetWindow(FleetMonitor& givenMonitor, FleetListModel& givenModel)
    : monitor(givenMonitor),
      model(givenModel),
      filterBar(new FilterBar(monitor)),
      view(new FleetView(monitor, model)),
      empty(new QLabel),
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
    auto* costs = new CostFooter(monitor);
    for (QLabel* label : {footer, static_cast<QLabel*>(costs)})
        label->setForegroundRole(QPalette::PlaceholderText);
    auto* quota = new QuotaStrip(monitor);
    connect(quota, &QuotaStrip::clicked, this, &FleetWindow::usageWanted);
    connect(filterBar, &FilterBar::usageWanted, this, &FleetWindow::usageWanted);
    auto* foot = new QHBoxLayout;
    foot->setContentsMargins(Metrics::margin, Metrics::grid, Metrics::margin, Metrics::grid);
    foot->setSpacing(Metrics::groupGap);
    foot->addWidget(footer);
    foot->addWidget(costs, 1);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(filterBar);
    layout->addWidget(quota);
    layout->addWidget(new HookBanner(monitor));
    layout->addWidget(view, 1);
    layout->addWidget(empty, 1);
    layout->addLayout(foot);
    setTabOrder(filterBar, quota);
    setTabOrder(quota, view);
}

void FleetWindow::addShortcuts() {
    const auto add = [this](const QKeySequence& keys, auto action) {
        connect(new QShortcut(keys, this), &QShortcut::activated, this, action);
    };
    add(QKeySequence::Find, [this] { filterBar->focusSearch(); });
    add(QKeySequence::Refresh, [this] { monitor.refresh(); });
    add(QKeySequence(Qt::CTRL | Qt::Key_U), [this] { emit usageWanted(); });
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
