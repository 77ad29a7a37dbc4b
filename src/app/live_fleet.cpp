#include "app/live_fleet.h"

#include "app/hook_jobs.h"
#include "platform/dock_badge.h"
#include "platform/host_window_focus.h"
#include "sources/paths.h"

#include <cstdio>

namespace fleetwise {

namespace {

void ensureStateDirectories() {
    if (const auto made = Paths::ensureStateDirectories(); !made) {
        std::fprintf(stderr, "Fleetwise: %s: %s\n", Paths::statusDir().c_str(),
                     made.error().message().c_str());
    }
}

}  // namespace

LiveFleet::LiveFleet(UserDefaults& defaults, Settings& givenSettings)
    : settings(givenSettings),
      hosts(Paths::hostsFile(), defaults, currentDate()),
      attentionLog(Paths::attentionLogFile(), currentDate()),
      watchdog(Paths::stallsFile(), [this](auto action) { loop.post(std::move(action)); }),
      windows(makeWindowFocus()),
      commands(settings, ProcessTable::system(), *windows, launcher),
      monitor(environment()) {}

FleetMonitor::Environment LiveFleet::environment() {
    return {
        .loop = loop,
        .settings = settings,
        .collect = [this, sources = machine.sources()](
                       const FleetSnapshot::Input& input,
                       Date now) { return FleetSnapshot::collect(input, sources, shared, now); },
        .hook = hookPlacesOfThisUser(),
        .sessionsDirectory = Paths::sessionsDir(),
        .ensureStateDirectories = ensureStateDirectories,
        .hosts = hosts,
        .watchdog = watchdog,
        .reactions = {&attentionLog},
        .focus = [this](const Session& session) { return commands.focus(session); },
        .resume = [this](const Session& session) { return commands.resume(session); },
        .showDockBadge = showDockBadge,
        .calendar = currentCalendar(),
        .home = Paths::home(),
    };
}

void LiveFleet::flush() {
    // The user may have removed the folder meanwhile.
    ensureStateDirectories();
    const Date now = currentDate();
    attentionLog.flush(now);
    hosts.flush(now);
}

}  // namespace fleetwise
