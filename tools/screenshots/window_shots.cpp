#include "screenshots/window_shots.h"

#include "app/language_choice.h"
#include "app/live_fleet.h"
#include "ui/archive/archive_window.h"
#include "ui/base/interface_text.h"
#include "ui/fleet/fleet_view.h"
#include "ui/fleet/fleet_window.h"
#include "ui/fleet/goal_dialog.h"
#include "ui/fleet_interface.h"
#include "ui/onboarding/onboarding_window.h"
#include "ui/settings/settings_window.h"
#include "ui/tray/fleet_popover.h"
#include "ui/usage/usage_window.h"

#include <QAbstractButton>
#include <QButtonGroup>
#include <QDir>
#include <QEventLoop>
#include <QListWidget>
#include <QPushButton>
#include <QRegularExpression>
#include <QScreen>
#include <QStackedWidget>
#include <QTimer>

#include <algorithm>
#include <chrono>
#include <utility>

namespace fleetwise::screenshots {

namespace {

using namespace std::chrono_literals;

/// Long enough for what is read in the background to come in.
constexpr auto settlingTime = 350ms;

void settle(std::chrono::milliseconds time = settlingTime) {
    QEventLoop loop;
    QTimer::singleShot(time, &loop, &QEventLoop::quit);
    loop.exec();
}

template <typename Window>
Window* openWindow() {
    for (QWidget* each : QApplication::topLevelWidgets()) {
        if (auto* window = qobject_cast<Window*>(each)) return window;
    }
    return nullptr;
}

/// Names that are the same in every language, what stands in paths, addresses and licences, and the
/// words that the generated sessions are made of.
bool isName(const QString& text) {
    static const QRegularExpression names(QStringLiteral(
        "^(Claude Code|Codex|Fleetwise|Deutsch|English|Français|Español|Italiano|Polski|"
        "https://|[\\w +.-]*\\d[\\w +.-]*|[~.]?[a-z]*/.*|[a-z]+([ .-][a-z]+)*|GNU C.*|.* WITH "
        ".*|RapidJSON|gpt-.*|.*, billing, main,.*)$"));
    return names.match(text).hasMatch();
}

/// Everything that a session says and is called comes from the session.
bool isOfASession(const FleetMonitor& monitor, const ArchiveIndex& archive, const QString& text) {
    const auto holds = [&](const std::string& part) {
        return !part.empty() && text.contains(qtText(part));
    };
    for (const Session& session : monitor.sessions()) {
        if (holds(session.displayName()) || holds(session.projectName()) || holds(session.id) ||
            holds(session.detail(monitor.clock(), monitor.calendar()))) {
            return true;
        }
    }
    for (const ArchiveEntry& entry : archive.entries()) {
        if (holds(entry.displayName()) || holds(entry.cwd)) return true;
    }
    return holds(monitor.home());
}

}  // namespace

WindowShots::WindowShots(QApplication& givenApplication, LiveFleet& givenFleet, QString givenFolder)
    : application(givenApplication),
      fleet(givenFleet),
      folder(std::move(givenFolder)),
      desktopPalette(QApplication::palette()),
      desktopFont(QApplication::font()) {}

std::vector<TextFault> WindowShots::take(const Run& run) {
    faults.clear();
    runFolder = folder + u'/' + run.name;
    QDir().mkpath(runFolder);
    FleetMonitor& monitor = fleet.fleet();
    QFont font = desktopFont;
    font.setPointSizeF(font.pointSizeF() * run.textScale);
    QApplication::setFont(font);
    monitor.change(Settings::language, run.language);
    monitor.change(Settings::appearanceMode, run.mode);
    monitor.change(Settings::density, "compact");
    chooseLanguage(run.language);

    FleetInterface interface(monitor, fleet.pastSessions(), fleet.settingsServices(), application,
                             desktopPalette);
    interface.start({.fleet = true});
    takeFleet();
    takePopover();
    interface.showUsage();
    takeUsage();
    interface.showArchive();
    settle(1s);
    grab(*openWindow<ArchiveWindow>(), QStringLiteral("archive"));
    interface.showSettings();
    takeSettings();
    interface.showOnboarding();
    takeOnboarding();
    return std::exchange(faults, {});
}

void WindowShots::takeFleet() {
    auto& window = *openWindow<FleetWindow>();
    auto& view = *window.findChild<FleetView*>();
    view.selectSomething();
    settle();
    grab(window, QStringLiteral("fleet"));
    FleetMonitor& monitor = fleet.fleet();
    monitor.change(Settings::density, "comfortable");
    view.selectAll();
    settle();
    grab(window, QStringLiteral("fleet-several"));
    monitor.change(Settings::density, "compact");
    view.clearSelection();
    const QSize usual = window.size();
    window.resize(window.minimumSizeHint().width(), usual.height());
    settle();
    grab(window, QStringLiteral("fleet-narrow"));
    window.resize(usual);
    if (monitor.sessions().empty()) return;
    GoalDialog goal(monitor, monitor.sessions().front().id, &window);
    goal.show();
    settle();
    grab(goal, QStringLiteral("goal"));
}

void WindowShots::takePopover() {
    auto& popover = *openWindow<FleetPopover>();
    const QRect screen = QGuiApplication::primaryScreen()->availableGeometry();
    popover.toggle(QRect(screen.right() - 200, screen.top(), 24, 24));
    settle();
    grab(popover, QStringLiteral("popover"));
    popover.hide();
}

void WindowShots::takeUsage() {
    auto& window = *openWindow<UsageWindow>();
    int number = 0;
    for (QAbstractButton* button : window.findChild<QButtonGroup*>()->buttons()) {
        ++number;
        if (!button->isVisible()) continue;
        button->click();
        settle();
        grab(window, QStringLiteral("usage-%1").arg(number));
    }
}

void WindowShots::takeSettings() {
    auto& window = *openWindow<SettingsWindow>();
    auto& pages = *window.findChild<QListWidget*>();
    for (int row = 0; row < pages.count(); ++row) {
        pages.setCurrentRow(row);
        settle();
        grab(window, QStringLiteral("settings-") + qtText(window.currentPageId()));
    }
}

void WindowShots::takeOnboarding() {
    auto& window = *openWindow<OnboardingWindow>();
    const auto buttons = window.findChildren<QPushButton*>();
    const auto next = std::ranges::find_if(buttons, &QPushButton::isDefault);
    for (int page = 1; window.isVisible(); ++page) {
        settle();
        grab(window, QStringLiteral("onboarding-%1").arg(page));
        (*next)->click();
    }
}

void WindowShots::grab(QWidget& window, const QString& name) {
    window.grab().save(runFolder + u'/' + name + QStringLiteral(".png"));
    const auto found = auditTexts(window, [this](const QString& text) {
        return isName(text) || isOfASession(fleet.fleet(), fleet.pastSessions(), text);
    });
    for (TextFault fault : found) {
        fault.place = name + QStringLiteral(": ") + fault.place;
        faults.push_back(std::move(fault));
    }
}

}  // namespace fleetwise::screenshots
