#include "window_bench.h"

#include "app/live_fleet.h"
#include "bench_support.h"
#include "foundation/user_defaults.h"
#include "sources/paths.h"
#include "ui/archive/archive_window.h"
#include "ui/fleet/fleet_window.h"
#include "ui/fleet_interface.h"
#include "ui/settings/settings_window.h"
#include "ui/tray/fleet_popover.h"
#include "ui/usage/usage_window.h"

#include <QApplication>
#include <QScreen>
#include <QTimer>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <fstream>
#include <functional>
#include <map>
#include <vector>

namespace fleetwise {

namespace {

using Clock = std::chrono::steady_clock;
using Milliseconds = std::chrono::duration<double, std::milli>;

constexpr int earlyRounds = 10;

void letPass(std::chrono::milliseconds time) {
    QEventLoop loop;
    QTimer::singleShot(time, &loop, &QEventLoop::quit);
    loop.exec();
}

double residentMebibytes() {
    std::ifstream file("/proc/self/statm");
    double all = 0;
    double resident = 0;
    constexpr double pagesPerMebibyte = 256;
    file >> all >> resident;
    return resident / pagesPerMebibyte;
}

template <typename Window>
QWidget& opened() {
    const auto windows = QApplication::topLevelWidgets();
    return **std::ranges::find_if(
        windows, [](QWidget* each) { return qobject_cast<Window*>(each) != nullptr; });
}

struct Opening {
    std::function<void()> open;
    std::function<QWidget&()> window;
    std::function<bool()> isFilled = [] { return true; };  ///< it shows what it is for
};

double timed(const Opening& opening) {
    const auto start = Clock::now();
    opening.open();
    while (!opening.isFilled())
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    opening.window().grab();
    return Milliseconds(Clock::now() - start).count();
}

}  // namespace

int benchWindows(const std::string& home, int rounds) {
    qputenv("HOME", home.c_str());
    qputenv("QT_QPA_PLATFORM", "offscreen");
    qputenv("DBUS_SESSION_BUS_ADDRESS", "disabled:");
    Paths::setHome(home);
    int argumentCount = 1;
    char name[] = "fleetwise-bench";
    char* arguments[] = {name, nullptr};
    QApplication application(argumentCount, arguments);
    QApplication::setQuitOnLastWindowClosed(false);
    InMemoryUserDefaults defaults;
    Settings settings(defaults);
    settings.set(Settings::notificationsEnabled, false);
    LiveFleet fleet(defaults, settings);
    fleet.start([](const std::string&) {}, [](const Notification&) {});
    FleetInterface interface(fleet.fleet(), fleet.pastSessions(), fleet.settingsServices(),
                             application, QApplication::palette());
    while (!fleet.fleet().hasCollected())
        letPass(std::chrono::milliseconds(20));
    letPass(std::chrono::seconds(4));

    const QRect screen = QGuiApplication::primaryScreen()->availableGeometry();
    const std::map<std::string, Opening> openings{
        {"popover",
         {[&] {
              static_cast<FleetPopover&>(opened<FleetPopover>())
                  .toggle(QRect(screen.right() - 60, screen.top(), 24, 24));
          },
          []() -> QWidget& { return opened<FleetPopover>(); }}},
        {"fleet",
         {[&] { interface.start({.fleet = true}); },
          []() -> QWidget& { return opened<FleetWindow>(); }}},
        {"usage",
         {[&] { interface.showUsage(); }, []() -> QWidget& { return opened<UsageWindow>(); }}},
        {"archive",
         {[&] { interface.showArchive(); }, []() -> QWidget& { return opened<ArchiveWindow>(); },
          [&] { return fleet.pastSessions().hasListed(); }}},
        {"settings",
         {[&] { interface.showSettings(); },
          []() -> QWidget& { return opened<SettingsWindow>(); }}},
    };
    nlohmann::ordered_json first;
    std::map<std::string, std::vector<double>> again;
    nlohmann::ordered_json resident{{"before", rounded(residentMebibytes())}};
    for (int round = 0; round <= rounds; ++round) {
        for (const auto& [window, opening] : openings) {
            const double taken = timed(opening);
            if (round == 0) first[window] = rounded(taken);
            if (round > 0) again[window].push_back(taken);
            // What a window reads in the background belongs to its memory; the popover does not
            // open again at the click that closed it.
            letPass(std::chrono::milliseconds(300));
            opening.window().hide();
        }
        if (round == earlyRounds) resident["firstTen"] = rounded(residentMebibytes());
    }
    resident["last"] = rounded(residentMebibytes());
    nlohmann::ordered_json medians;
    for (auto& [window, times] : again) {
        const auto middle = times.begin() + std::ssize(times) / 2;
        std::nth_element(times.begin(), middle, times.end());
        medians[window] = rounded(*middle);
    }
    const nlohmann::ordered_json result{
        {"firstMs", first}, {"againMs", medians}, {"residentMiB", resident}};
    std::printf("%s\n", result.dump().c_str());
    return 0;
}

}  // namespace fleetwise
