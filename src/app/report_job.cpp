#include "app/report_job.h"

#include "app/diagnostics.h"
#include "app/environment.h"
#include "app/machine_sources.h"
#include "fleet/remembered_hosts.h"
#include "localisation/language.h"
#include "localisation/localisation.h"
#include "monitor/settings.h"
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

void chooseLanguage(Diagnostics& diagnostics, const Settings& settings) {
    diagnostics.preferredLanguages = preferredLanguages(environmentVariable);
    diagnostics.languageSetting = settings.language();
    diagnostics.interfaceLanguage =
        interfaceLanguage(diagnostics.languageSetting, diagnostics.preferredLanguages);
    StringsTable table;
    if (const auto tables = programResource("share/fleetwise")) {
        table = loadStringsTable(*tables, diagnostics.interfaceLanguage);
    }
    setInterfaceLanguage(diagnostics.interfaceLanguage, std::move(table));
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

std::optional<std::string> bundledHook() {
    if (auto beside = programResource("bin/fleetwise-hook")) return beside;
    return programResource("lib/fleetwise/fleetwise-hook");
}

}  // namespace

std::string runReport(UserDefaults& defaults) {
    const Settings settings(defaults);
    Diagnostics diagnostics;
    diagnostics.now = currentDate();
    diagnostics.calendar = currentCalendar();
    diagnostics.home = Paths::home();
    diagnostics.registryDirectory = Paths::sessionsDir();
    diagnostics.statusDirectory = Paths::statusDir();
    diagnostics.desktopDirectory = Paths::desktopCodeSessions();
    diagnostics.hooksInstalled =
        HookInstaller::isInstalled(Paths::settingsFile(), Paths::installedHook());
    diagnostics.hookIsCurrent = HookInstaller::isCurrent(bundledHook(), Paths::installedHook());
    diagnostics.stalls = loadStalls(Paths::stallsFile());
    chooseLanguage(diagnostics, settings);
    collectFleet(diagnostics, settings);

    HostAppMemory hosts(Paths::hostsFile(), defaults, diagnostics.now);
    fillRememberedHosts(diagnostics.collection.sessions, hosts.entries(diagnostics.now));
    return diagnosticReport(diagnostics);
}

}  // namespace fleetwise
