#include "ui/settings/settings_window.h"

#include "ui/base/interface_text.h"
#include "ui/base/theme.h"
#include "ui/settings/about_page.h"
#include "ui/settings/accounts_page.h"
#include "ui/settings/actions_page.h"
#include "ui/settings/appearance_page.h"
#include "ui/settings/general_page.h"
#include "ui/settings/hooks_page.h"
#include "ui/settings/list_page.h"
#include "ui/settings/notifications_page.h"
#include "ui/settings/page_list_delegate.h"
#include "ui/settings/prices_page.h"
#include "ui/settings/sounds_page.h"
#include "ui/settings/webhook_page.h"

#include <QBoxLayout>
#include <QKeyEvent>
#include <QListWidget>
#include <QScreen>
#include <QScrollArea>
#include <QShortcut>
#include <QStackedWidget>

#include <algorithm>
#include <array>
#include <chrono>
#include <type_traits>

namespace fleetwise {

namespace {

struct PageKind {
    std::string_view id;
    Text name;
    SettingsPage* (*make)(FleetMonitor&, const SettingsServices&);
};

template <typename Page>
SettingsPage* makeSettingsPage(FleetMonitor& monitor, const SettingsServices& services) {
    if constexpr (std::is_constructible_v<Page, FleetMonitor&, const SettingsServices&>) {
        return new Page(monitor, services);
    } else {
        return new Page(monitor);
    }
}

constexpr std::array pageKinds{
    PageKind{"general", "Allgemein"_text, makeSettingsPage<GeneralPage>},
    PageKind{"appearance", "Darstellung"_text, makeSettingsPage<AppearancePage>},
    PageKind{"list", "Liste"_text, makeSettingsPage<ListPage>},
    PageKind{"notifications", "Mitteilungen"_text, makeSettingsPage<NotificationsPage>},
    PageKind{"sounds", "Töne"_text, makeSettingsPage<SoundsPage>},
    PageKind{"actions", "Aktionen"_text, makeSettingsPage<ActionsPage>},
    PageKind{"webhook", "Webhook"_text, makeSettingsPage<WebhookPage>},
    PageKind{"accounts", "Konten"_text, makeSettingsPage<AccountsPage>},
    PageKind{"prices", "Preise"_text, makeSettingsPage<PricesPage>},
    PageKind{"hooks", "Hook"_text, makeSettingsPage<HooksPage>},
    PageKind{"about", "Über Fleetwise"_text, makeSettingsPage<AboutPage>},
};

constexpr int shortcutPages = 9;
constexpr int columnsAtFirst = 112;
constexpr int linesAtFirst = 36;
constexpr double largestScreenShare = 0.9;
constexpr std::chrono::seconds refreshStep(1);

}  // namespace

SettingsWindow::SettingsWindow(FleetMonitor& givenMonitor, const SettingsServices& givenServices)
    : monitor(givenMonitor),
      services(givenServices),
      list(new QListWidget),
      stack(new QStackedWidget) {
    setWindowTitle(shown("Einstellungen"_text));
    setObjectName(QStringLiteral("settings"));
    layOut();
    addShortcuts();
    clock.setTimerType(Qt::VeryCoarseTimer);
    clock.setInterval(refreshStep);
    connect(&clock, &QTimer::timeout, this, &SettingsWindow::refresh);
    connect(list, &QListWidget::currentRowChanged, this, &SettingsWindow::turnTo);
    list->setCurrentRow(0);
    restoreGeometryOnce();
    monitor.addObserver(*this);
}

SettingsWindow::~SettingsWindow() {
    if (isVisible()) hide();
    monitor.removeObserver(*this);
}

void SettingsWindow::layOut() {
    for (const PageKind& kind : pageKinds) {
        list->addItem(shown(kind.name));
        auto* area = new QScrollArea;
        area->setWidgetResizable(true);
        area->setFrameShape(QFrame::NoFrame);
        area->setFocusPolicy(Qt::NoFocus);
        area->setAccessibleName(shown(kind.name));
        stack->addWidget(area);
        areas.push_back(area);
    }
    pages.resize(pageKinds.size());
    list->setAccessibleName(shown("Seiten"_text));
    list->setFrameShape(QFrame::NoFrame);
    list->setItemDelegate(new PageListDelegate(list));
    list->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    list->setMouseTracking(true);
    list->viewport()->setBackgroundRole(QPalette::Window);
    list->setFixedWidth(list->sizeHintForColumn(0) + Metrics::gap);

    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    auto* side = new QVBoxLayout;
    side->setContentsMargins(Metrics::gap, Metrics::gap, Metrics::gap, Metrics::gap);
    side->addWidget(list);
    layout->addLayout(side);
    layout->addWidget(stack, 1);
    setFocusProxy(list);
}

void SettingsWindow::addShortcuts() {
    const auto add = [this](const QKeySequence& keys, auto action) {
        connect(new QShortcut(keys, this), &QShortcut::activated, this, action);
    };
    add(QKeySequence::Close, [this] { close(); });
    for (int index = 0; index < shortcutPages; ++index) {
        add(QKeySequence(Qt::CTRL | static_cast<Qt::Key>(Qt::Key_1 + index)), [this, index] {
            list->setFocus(Qt::ShortcutFocusReason);
            list->setCurrentRow(index);
        });
    }
}

void SettingsWindow::turnTo(int index) {
    if (index < 0) return;
    SettingsPage*& page = pages[static_cast<std::size_t>(index)];
    if (page == nullptr) page = makePage(index);
    stack->setCurrentIndex(index);
    refresh();
}

SettingsPage* SettingsWindow::makePage(int index) {
    const auto position = static_cast<std::size_t>(index);
    SettingsPage* page = pageKinds.at(position).make(monitor, services);
    page->setAutoFillBackground(true);
    page->setBackgroundRole(QPalette::Base);
    if (const auto* general = qobject_cast<GeneralPage*>(page)) {
        connect(general, &GeneralPage::onboardingWanted, this, &SettingsWindow::onboardingWanted);
    }
    areas[position]->setWidget(page);
    return page;
}

void SettingsWindow::showPage(std::string_view id) {
    const auto kind = std::ranges::find(pageKinds, id, &PageKind::id);
    if (kind != pageKinds.end()) {
        list->setCurrentRow(static_cast<int>(kind - pageKinds.begin()));
    }
}

std::string SettingsWindow::currentPageId() const {
    return std::string(pageKinds.at(static_cast<std::size_t>(list->currentRow())).id);
}

void SettingsWindow::refresh() {
    if (!canBeSeen()) return clock.stop();
    if (!clock.isActive()) clock.start();
    pages[static_cast<std::size_t>(list->currentRow())]->refresh();
}

void SettingsWindow::showEvent(QShowEvent* event) {
    QWidget::showEvent(event);
    refresh();
}

void SettingsWindow::changeEvent(QEvent* event) {
    QWidget::changeEvent(event);
    if (event->type() == QEvent::WindowStateChange) refresh();
}

void SettingsWindow::hideEvent(QHideEvent* event) {
    // What was typed last counts, too.
    if (QWidget* typedIn = focusWidget(); typedIn != nullptr) typedIn->clearFocus();
    monitor.store(Settings::settingsGeometry, saveGeometry().toBase64().toStdString());
    clock.stop();
    QWidget::hideEvent(event);
}

void SettingsWindow::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Escape) close();
    QWidget::keyPressEvent(event);
}

void SettingsWindow::restoreGeometryOnce() {
    const std::string stored = monitor.settings().get(Settings::settingsGeometry);
    if (restoreGeometry(QByteArray::fromBase64(QByteArray::fromStdString(stored)))) return;
    const QFontMetrics metrics = fontMetrics();
    const QSize wanted(metrics.averageCharWidth() * columnsAtFirst,
                       metrics.lineSpacing() * linesAtFirst);
    resize(wanted.boundedTo(screen()->availableSize() * largestScreenShare));
}

void SettingsWindow::bringUp() {
    setWindowState(windowState() & ~Qt::WindowMinimized);
    show();
    raise();
    activateWindow();
}

}  // namespace fleetwise
