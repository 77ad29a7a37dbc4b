#include "ui/fleet_interface.h"

#include "fleet/cost_texts.h"
#include "foundation/text.h"
#include "ui/base/cost_display.h"
#include "ui/base/interface_text.h"
#include "ui/base/theme.h"
#include "ui/fleet/session_menu.h"
#include "ui/mark/mark_settings.h"
#include "ui/mark/mark_tooltip.h"
#include "ui/quota/quota_figures.h"

#include <QApplication>
#include <QWindow>

#include <algorithm>
#include <chrono>
#include <utility>

namespace fleetwise {

namespace {

constexpr std::chrono::minutes markStep(1);

bool canBeSeen(const QWidget* widget) {
    return widget->isVisible() && !widget->isMinimized() && widget->windowHandle() != nullptr &&
           widget->windowHandle()->isExposed();
}

/// Some trays take messages for markup, and none tells.
QString messageLine(const std::string& text) {
    constexpr std::size_t longest = 200;
    return qtText(printable(shortenedText(text, longest)))
        .replace(u'<', u'‹')
        .replace(u'>', u'›')
        .replace(u'&', u'＆');
}

bool isAnyWindowVisible() {
    return std::ranges::any_of(QApplication::topLevelWidgets(), canBeSeen);
}

}  // namespace

FleetInterface::FleetInterface(FleetMonitor& givenMonitor, ArchiveIndex& givenArchive,
                               SettingsServices givenServices, QApplication& givenApplication,
                               const QPalette& givenPalette)
    : monitor(givenMonitor),
      archive(givenArchive),
      services(std::move(givenServices)),
      application(givenApplication),
      desktopPalette(givenPalette),
      listModel(monitor, [this] { return monitor.groups(); }),
      glanceModel(monitor, [this] { return buildGlance(monitor.sessions()); }),
      window(monitor, listModel),
      popover(glanceModel, glanceDelegate) {
    glanceDelegate.setDensity(Density::comfortable);
    // A panel need not have the colours of the windows, and does not tell its own.
    tray.setStyle(MarkStyle::badge, Appearance::dark);
    connectTray();
    connectPopover();
    settingsChanged();
    fleetChanged();
    hookChanged();
    followTray();
    markClock.setTimerType(Qt::VeryCoarseTimer);
    markClock.setInterval(markStep);
    connect(&markClock, &QTimer::timeout, this, &FleetInterface::showMark);
    usageChanged();
    monitor.setVisibility(isAnyWindowVisible);
    monitor.addObserver(*this);
}

FleetInterface::~FleetInterface() {
    monitor.removeObserver(*this);
    monitor.setVisibility({});
}

void FleetInterface::start(const OpenWindows& windows) {
    hasStarted = true;
    if (windows.fleet) window.bringUp();
    if (windows.usage) showUsage();
    if (windows.archive) showArchive();
    if (windows.settingsPage) showSettings(*windows.settingsPage);
    if (windows.onboarding) showOnboarding();
    followTray();
}

FleetInterface::OpenWindows FleetInterface::openWindows() const {
    const auto isOpen = [](const auto& each) { return each != nullptr && each->isVisible(); };
    OpenWindows windows{.fleet = window.isVisible() && !window.isMinimized(),
                        .usage = isOpen(usageWindow),
                        .archive = isOpen(archiveWindow),
                        .onboarding = isOpen(onboarding)};
    if (isOpen(settingsWindow)) windows.settingsPage = settingsWindow->currentPageId();
    return windows;
}

void FleetInterface::show(const Notification& notification) {
    if (!tray.isAvailable()) return;
    QStringList lines;
    for (const std::string& text : {notification.subtitle, notification.body}) {
        if (!text.empty()) lines << messageLine(text);
    }
    toldSession = notification.sessionId;
    tray.showMessage(messageLine(notification.title), lines.join(u'\n'));
}

/// The window, made where it is missing.
template <typename Window, typename... Arguments>
Window& FleetInterface::made(std::unique_ptr<Window>& given, Arguments&&... arguments) {
    if (given == nullptr) {
        given = std::make_unique<Window>(std::forward<Arguments>(arguments)...);
    }
    return *given;
}

void FleetInterface::showUsage() {
    const bool isNew = usageWindow == nullptr;
    UsageWindow& usage = made(usageWindow, monitor, archive);
    if (isNew) {
        connect(&usage, &UsageWindow::priceSettingsWanted, this,
                [this] { showSettings("prices"); });
    }
    usage.bringUp();
}

void FleetInterface::showArchive() {
    made(archiveWindow, monitor, archive).bringUp();
}

void FleetInterface::showSettings(const std::string& page) {
    const bool isNew = settingsWindow == nullptr;
    SettingsWindow& settings = made(settingsWindow, monitor, services);
    if (isNew) {
        connect(&settings, &SettingsWindow::onboardingWanted, this,
                &FleetInterface::showOnboarding);
    }
    if (!page.empty()) settings.showPage(page);
    settings.bringUp();
}

void FleetInterface::showOnboarding() {
    const bool isNew = onboarding == nullptr;
    OnboardingWindow& intro = made(onboarding, monitor);
    if (isNew) {
        connect(&intro, &OnboardingWindow::finished, this, [this] {
            // It is seen once, and would follow the fleet ever after.
            onboarding.release()->deleteLater();
            window.bringUp();
        });
    }
    intro.bringUp();
}

void FleetInterface::connectTray() {
    connect(&tray, &TrayItem::popoverWanted, &popover, &FleetPopover::toggle);
    connect(&tray, &TrayItem::windowWanted, &window, &FleetWindow::bringUp);
    // Not quit(), which any window can refuse by not closing.
    connect(&tray, &TrayItem::quitWanted, &application, [] { QApplication::exit(); });
    connect(&tray, &TrayItem::messageClicked, this, [this] {
        if (toldSession.empty()) return window.bringUp();
        monitor.answerNotification(toldSession, NotificationAction::focus);
    });
    connect(&tray, &TrayItem::availabilityChanged, this, &FleetInterface::followTray);
}

void FleetInterface::connectPopover() {
    connect(&popover, &FleetPopover::windowWanted, &window, &FleetWindow::bringUp);
    connect(&window, &FleetWindow::usageWanted, this, &FleetInterface::showUsage);
    connect(&window, &FleetWindow::archiveWanted, this, &FleetInterface::showArchive);
    connect(&window, &FleetWindow::settingsWanted, this, [this] { showSettings(); });
    connect(&popover, &FleetPopover::usageWanted, this, &FleetInterface::showUsage);
    connect(&popover, &FleetPopover::settingsWanted, this, [this] { showSettings(); });
    const auto hideUnlessTold = [this](const std::string& id) {
        // What stood in the way is told in the row.
        if (!monitor.notice(id)) popover.hide();
    };
    connect(&popover, &FleetPopover::menuWanted, this,
            [this, hideUnlessTold](const QModelIndex& index, const QPoint& position) {
                if (glanceModel.row(index).kind == SessionRow::Kind::heading) return;
                const std::string id = glanceModel.row(index).key.toStdString();
                showSessionMenu(monitor, id, &popover, position,
                                [hideUnlessTold, id] { hideUnlessTold(id); });
            });
    connect(&popover, &FleetPopover::opening, this, &FleetInterface::updatePopover);
    connect(&popover, &FleetPopover::activated, this,
            [this, hideUnlessTold](const QModelIndex& index) {
                if (glanceModel.row(index).kind == SessionRow::Kind::heading) {
                    glanceModel.toggleFolded(index);
                    popover.reveal(index);
                    return;
                }
                const std::string id = glanceModel.row(index).key.toStdString();
                monitor.activate(id);
                hideUnlessTold(id);
            });
}

void FleetInterface::followTray() {
    window.setClosing(tray.isAvailable() ? FleetWindow::Closing::hides
                                         : FleetWindow::Closing::minimises);
    // Without the mark the window is the only way in.
    if (!tray.isAvailable() && hasStarted && window.isHidden()) window.showMinimized();
}

void FleetInterface::settingsChanged() {
    applyAppearance();
    glanceDelegate.setCosts(costDisplay(monitor.settings()));
    showMark();
    showQuota();
    showToday();
}

void FleetInterface::applyAppearance() {
    const std::string mode = monitor.settings().get(Settings::appearanceMode);
    const QPalette wanted = applicationPalette(appearanceFor(mode, desktopPalette), desktopPalette);
    if (wanted != QApplication::palette()) QApplication::setPalette(wanted);
}

void FleetInterface::fleetChanged() {
    showMark();
    // The day may be another one.
    showToday();
}

void FleetInterface::showToday() {
    const CostDisplay display = costDisplay(monitor.settings());
    const CostFigures today = monitor.figuresOfToday();
    const std::string amount = costText(today.money(display.basis));
    if (display.extent == CostDisplay::Extent::nothing || amount.empty()) {
        popover.setCosts({}, {});
        return;
    }
    popover.setCosts(shown("Heute %@"_text, amount), qtText(costExplanation(today, display.basis)));
}

void FleetInterface::showMark() {
    const auto working = static_cast<int>(monitor.workingCount());
    const auto attention = static_cast<int>(monitor.attentionCount());
    const UsageOverview& usage = monitor.usage();
    const Date now = quotaTime();
    MarkFigures figures = quotaMark(usage, now);
    figures.working = working;
    figures.needsAttention = attention > 0;
    figures = shownFigures(std::move(figures), markChoices(monitor.settings()));
    tray.setFigures(figures);
    MarkTooltip tooltip{.working = working, .attention = attention};
    if (monitor.settings().get(Settings::usageShowsQuota)) {
        tooltip.quota = quotaTooltip(usage, now, monitor.calendar());
    }
    tray.setToolTip(qtText(markTooltip(tooltip)));
    if (figures == shownMark && !QApplication::windowIcon().isNull()) return;
    shownMark = figures;
    QApplication::setWindowIcon(markIcon(figures, MarkStyle::badge, Appearance::dark));
}

/// The clock may stand still while no window can be seen.
Date FleetInterface::quotaTime() const {
    return std::max(monitor.usage().at, monitor.clock());
}

void FleetInterface::usageChanged() {
    showMark();
    showQuota();
    const UsageOverview& usage = monitor.usage();
    const bool tellsTime = usage.fiveHour || usage.sevenDay;
    if (tellsTime && !markClock.isActive()) markClock.start();
    if (!tellsTime) markClock.stop();
}

void FleetInterface::showQuota() {
    if (popover.isVisible()) updatePopover();
}

void FleetInterface::updatePopover() {
    const UsageOverview& usage = monitor.usage();
    const Date now = quotaTime();
    popover.setQuota(monitor.settings().get(Settings::usageShowsQuota)
                         ? quotaFigures(usage, now, monitor.calendar())
                         : QuotaFigures());
}

void FleetInterface::hookChanged() {
    popover.setHint(monitor.hookState() == FleetMonitor::HookState::missing
                        ? FleetHint::installHook
                        : FleetHint::startAgent);
}

}  // namespace fleetwise
