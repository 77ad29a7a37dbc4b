#include "ui/usage/usage_window.h"

#include "ui/base/chip_button.h"
#include "ui/base/flow_layout.h"
#include "ui/base/interface_text.h"
#include "ui/base/theme.h"
#include "ui/base/window_system.h"
#include "ui/charts/chart_widget.h"
#include "ui/usage/pin_button.h"
#include "ui/usage/price_page.h"
#include "ui/usage/quota_page.h"
#include "ui/usage/ranking_page.h"
#include "ui/usage/sessions_page.h"
#include "ui/usage/spending_page.h"
#include "ui/usage/waiting_page.h"

#include <QBoxLayout>
#include <QButtonGroup>
#include <QKeyEvent>
#include <QScreen>
#include <QScrollArea>
#include <QShortcut>
#include <QStackedWidget>
#include <QWindow>

#include <algorithm>

namespace fleetwise {

namespace {

constexpr QSize initialSize(1000, 720);
constexpr double largestShare = 0.9;  ///< of the screen, for the initial size
constexpr Seconds oneMinute{60};
constexpr Seconds archiveStep{3};  ///< at least, between two refreshes while titles are read

}  // namespace

UsageWindow::UsageWindow(FleetMonitor& givenMonitor, ArchiveIndex& givenArchive)
    : monitor(givenMonitor),
      archive(givenArchive),
      stack(new QStackedWidget),
      choice(new QButtonGroup(this)),
      tables(new ChipButton(shown("Tabelle"_text))),
      pin(new PinButton) {
    setWindowTitle(shown("Nutzung"_text));
    setObjectName(QStringLiteral("usage"));
    addPages();
    layOut();
    addShortcuts();
    tables->setToolTip(shown("Die Werte als Tabelle statt als Diagramm"_text));
    connect(tables, &QToolButton::toggled, this, [this](bool showsTables) {
        for (const Entry& entry : pages)
            entry.page->setShowsTables(showsTables);
    });
    connect(pin, &QToolButton::toggled, this, &UsageWindow::setPinned);
    pages.front().button->setChecked(true);
    showWantedPages();
    restoreGeometryOnce();
    pin->setHidden(isWayland());
    pin->setChecked(monitor.settings().get(Settings::usagePinned));
    monitor.addObserver(*this);
    archive.addObserver(*this);
}

UsageWindow::~UsageWindow() {
    if (isVisible()) hide();
    archive.removeObserver(*this);
    monitor.removeObserver(*this);
}

void UsageWindow::addPages() {
    addPage(new QuotaPage(monitor));
    addPage(new SpendingPage(monitor));
    addPage(new RankingPage(monitor, archive, RankingPage::Ranking::models));
    addPage(new RankingPage(monitor, archive, RankingPage::Ranking::projects));
    addPage(new SessionsPage(monitor, archive));
    addPage(new WaitingPage(monitor));
    auto* prices = new PricePage(monitor);
    connect(prices, &PricePage::settingsWanted, this, &UsageWindow::priceSettingsWanted);
    addPage(prices);
}

void UsageWindow::addPage(UsagePage* page) {
    auto* area = new QScrollArea;
    area->setWidget(page);
    area->setWidgetResizable(true);
    area->setFrameShape(QFrame::NoFrame);
    area->setFocusPolicy(Qt::NoFocus);
    area->setAccessibleName(page->name());
    page->setAutoFillBackground(true);
    page->setBackgroundRole(QPalette::Base);
    auto* button = new ChipButton(page->name());
    const std::size_t index = pages.size();
    connect(button, &QToolButton::toggled, this, [this, index](bool isChosen) {
        if (isChosen) turnTo(index);
    });
    choice->addButton(button);
    stack->addWidget(area);
    pages.push_back({page, area, button, page->findChild<ChartWidget*>() != nullptr});
}

void UsageWindow::layOut() {
    auto* header = new QHBoxLayout;
    header->setContentsMargins(Metrics::margin, Metrics::gap, Metrics::margin, Metrics::gap);
    header->setSpacing(Metrics::groupGap);
    auto* buttons = new FlowLayout;
    for (const Entry& entry : pages)
        buttons->addWidget(entry.button);
    header->addLayout(buttons, 1);
    auto* corner = new QHBoxLayout;
    corner->setSpacing(Metrics::gap);
    corner->addWidget(tables, 0, Qt::AlignTop);
    corner->addWidget(pin, 0, Qt::AlignTop);
    header->addLayout(corner);
    QSizePolicy keepsItsPlace = tables->sizePolicy();
    keepsItsPlace.setRetainSizeWhenHidden(true);
    tables->setSizePolicy(keepsItsPlace);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addLayout(header);
    layout->addWidget(stack, 1);
}

void UsageWindow::addShortcuts() {
    const auto add = [this](const QKeySequence& keys, auto action) {
        connect(new QShortcut(keys, this), &QShortcut::activated, this, action);
    };
    add(QKeySequence::Close, [this] { close(); });
    add(QKeySequence::Refresh, [this] { monitor.refresh(); });
    for (std::size_t index = 0; index < pages.size(); ++index) {
        add(QKeySequence(Qt::CTRL | static_cast<Qt::Key>(Qt::Key_1 + static_cast<int>(index))),
            [this, index] {
                if (!pages[index].page->isWanted()) return;
                pages[index].button->setChecked(true);
                pages[index].button->setFocus(Qt::ShortcutFocusReason);
            });
    }
}

void UsageWindow::turnTo(std::size_t index) {
    stack->setCurrentWidget(pages[index].area);
    tables->setVisible(pages[index].hasCharts);
    readArchive();
    refresh();
}

UsagePage& UsageWindow::currentPage() const {
    const auto current = std::ranges::find(pages, stack->currentWidget(), &Entry::area);
    return *current->page;
}

void UsageWindow::showWantedPages() {
    for (const Entry& entry : pages)
        entry.button->setVisible(entry.page->isWanted());
    if (currentPage().isWanted()) return;
    const auto wanted =
        std::ranges::find_if(pages, [](const Entry& entry) { return entry.page->isWanted(); });
    if (wanted != pages.end()) wanted->button->setChecked(true);
}

Date UsageWindow::now() const {
    // The clock stands while nobody looks.
    return std::max(monitor.clock(), monitor.lastRefresh());
}

void UsageWindow::refresh() {
    if (!canBeSeen()) return;
    shownAt = now();
    currentPage().refresh(shownAt);
}

void UsageWindow::refresh(UsagePage::Subject subject) {
    if (currentPage().subject() == subject) refresh();
}

void UsageWindow::settingsChanged() {
    pin->setChecked(monitor.settings().get(Settings::usagePinned));
    showWantedPages();
    refresh();
}

void UsageWindow::clockTicked() {
    if (now() - shownAt >= oneMinute) refresh();
}

void UsageWindow::archiveChanged() {
    if (!currentPage().needsArchive()) return;
    if (archive.progress() && archiveShownAt && now() - *archiveShownAt < archiveStep) return;
    archiveShownAt = now();
    refresh();
}

void UsageWindow::readArchive() {
    if (hasReadArchive || !canBeSeen() || !currentPage().needsArchive()) return;
    hasReadArchive = true;
    archiveShownAt.reset();
    archive.refresh();
}

void UsageWindow::setPinned(bool isPinned) {
    if (monitor.settings().get(Settings::usagePinned) != isPinned)
        monitor.change(Settings::usagePinned, isPinned);
    // Through setWindowFlag() the window would be hidden and shown anew.
    const Qt::WindowFlags flags = windowFlags().setFlag(Qt::WindowStaysOnTopHint, isPinned);
    overrideWindowFlags(flags);
    if (windowHandle() != nullptr) windowHandle()->setFlags(flags);
}

void UsageWindow::showEvent(QShowEvent* event) {
    QWidget::showEvent(event);
    readArchive();
    refresh();
}

void UsageWindow::changeEvent(QEvent* event) {
    QWidget::changeEvent(event);
    if (event->type() == QEvent::WindowStateChange) refresh();
}

void UsageWindow::hideEvent(QHideEvent* event) {
    monitor.store(Settings::usageGeometry, saveGeometry().toBase64().toStdString());
    hasReadArchive = false;
    QWidget::hideEvent(event);
}

void UsageWindow::keyPressEvent(QKeyEvent* event) {
    // Whatever has the focus may want the key first: a marker goes before the window does.
    if (event->key() == Qt::Key_Escape) close();
    QWidget::keyPressEvent(event);
}

void UsageWindow::restoreGeometryOnce() {
    const std::string stored = monitor.settings().get(Settings::usageGeometry);
    if (restoreGeometry(QByteArray::fromBase64(QByteArray::fromStdString(stored)))) return;
    resize(initialSize.boundedTo(screen()->availableSize() * largestShare));
}

void UsageWindow::bringUp() {
    setWindowState(windowState() & ~Qt::WindowMinimized);
    show();
    raise();
    activateWindow();
}

}  // namespace fleetwise
