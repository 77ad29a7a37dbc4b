#include "app/report_job.h"

#include "app/diagnostics.h"
#include "app/environment.h"
#include "app/machine_sources.h"
#include "app/session_commands.h"
#include "app/usage_places.h"
#include "cost/cost_store.h"
#include "cost/price_settings.h"
#include "fleet/remembered_hosts.h"
#include "monitor/settings.h"
#include "platform/directory_watcher.h"
#include "sources/hook_installer.h"
#include "sources/host_app_memory.h"
#include "sources/paths.h"

#include <chrono>

namespace fleetwise {

namespace {

double millisecondsSince(std::chrono::steady_clock::time_point start) {
    return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start)
        .count();
}

void collectFleet(Diagnostics& diagnostics, const Settings& settings) {
    MachineSources machine;
    const FleetSnapshot::Sources sources = machine.sources();
    const FleetSnapshot::Input input = settings.snapshotInput();
    FleetSnapshot::Shared shared;

    const auto start = std::chrono::steady_clock::now();
    FleetSnapshot::collect(input, sources, shared, diagnostics.now);
    diagnostics.firstMilliseconds = millisecondsSince(start);

    const auto warmStart = std::chrono::steady_clock::now();
    diagnostics.now = currentDate();
    diagnostics.collection = FleetSnapshot::collect(input, sources, shared, diagnostics.now);
    diagnostics.warmMilliseconds = millisecondsSince(warmStart);
    diagnostics.timings = shared.timings;
}

void collectCosts(Diagnostics& diagnostics, const Settings& settings, UserDefaults& defaults) {
    CostStore& store = CostStore::shared();
    store.refresh(diagnostics.now, settings.get(Settings::showsCodex));
    diagnostics.costs = *store.sessions();
    diagnostics.prices =
        PriceSettings(defaults, Paths::pricesFile(), [](const Prices::Book&) {}).load();
    diagnostics.priceVerdict = store.priceVerdict(diagnostics.prices);
}

void collectUsage(Diagnostics& diagnostics, const Settings& settings) {
    UsageCollector usage(usagePlacesOfThisUser(), UsageHistoryStore::shared(),
                         QuotaNotice::shared());
    diagnostics.ownGoals = settings.get(Settings::ownGoals);
    diagnostics.usage = usage.collect({.accountNames = settings.get(Settings::accountNames),
                                       .showsCodex = settings.get(Settings::showsCodex),
                                       .book = diagnostics.prices,
                                       .calendar = diagnostics.calendar},
                                      diagnostics.now);
}

}  // namespace

std::string runReport(UserDefaults& defaults, const LanguageChoice& language) {
    const Settings settings(defaults);
    Diagnostics diagnostics;
    diagnostics.now = currentDate();
    diagnostics.calendar = currentCalendar();
    diagnostics.home = Paths::home();
    diagnostics.registryDirectory = Paths::sessionsDir();
    diagnostics.statusDirectory = Paths::statusDir();
    diagnostics.desktopDirectory = Paths::desktopCodeSessions();
    diagnostics.codexDirectory = Paths::codexDir();
    diagnostics.hooksInstalled =
        HookInstaller::isInstalled(Paths::settingsFile(), Paths::installedHook());
    // Only an installed copy is renewed, so only that can be out of date.
    diagnostics.hookIsCurrent = !diagnostics.hooksInstalled ||
                                HookInstaller::isCurrent(bundledHook(), Paths::installedHook());
    const auto isWatched = [](const std::string& directory) {
        return watchProblem(directory) != WatchProblem::limitReached;
    };
    diagnostics.watchesFolders = isWatched(Paths::statusDir()) && isWatched(Paths::sessionsDir());
    diagnostics.stalls = loadStalls(Paths::stallsFile());
    diagnostics.language = language;
    diagnostics.reactions = settings.reactionRules();
    diagnostics.terminal = settings.get(Settings::terminalPath);
    diagnostics.terminals = SessionCommands::terminals();
    collectFleet(diagnostics, settings);
    collectCosts(diagnostics, settings, defaults);
    collectUsage(diagnostics, settings);

    HostAppMemory hosts(Paths::hostsFile(), defaults, diagnostics.now);
    fillRememberedHosts(diagnostics.collection.sessions, hosts.entries(diagnostics.now));
    return diagnosticReport(diagnostics);
}

}  // namespace fleetwise
