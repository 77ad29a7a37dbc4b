#include "app/self_test_job.h"

#include "app/environment.h"
#include "app/machine_checks.h"
#include "app/program_checks.h"
#include "app/reaction_checks.h"
#include "sources/hook_installer.h"
#include "sources/paths.h"

#include <QDBusConnection>
#include <QDBusConnectionInterface>

#include <filesystem>

namespace fleetwise {

namespace {

InterfaceTexts textsInUse(const std::string& language) {
    const std::string tables = programResource("share/fleetwise").value_or("");
    return {.language = language,
            .table = loadStringsTable(tables, language),
            .englishTable = loadStringsTable(tables, "en")};
}

/// Whether the desktop's service for notifications runs, or would be started when it is called.
bool hasNotificationService() {
    const QDBusConnection bus = QDBusConnection::sessionBus();
    if (!bus.isConnected()) return false;
    const QString service = QStringLiteral("org.freedesktop.Notifications");
    return bus.interface()->isServiceRegistered(service).value() ||
           bus.interface()->activatableServiceNames().value().contains(service);
}

MachineConditions conditionsOfThisMachine() {
    return {
        .stateDirectory = Paths::stateDir(),
        .statusDirectory = Paths::statusDir(),
        .hooksInstalled = HookInstaller::isInstalled(Paths::settingsFile(), Paths::installedHook()),
        .hookIsCurrent = HookInstaller::isCurrent(bundledHook(), Paths::installedHook()),
        .reachesSessionBus = QDBusConnection::sessionBus().isConnected(),
        .hasNotificationService = hasNotificationService()};
}

}  // namespace

SelfTest runSelfTest(const LanguageChoice& language) {
    std::error_code none;
    const std::string temporaryFolder = std::filesystem::temp_directory_path(none).string();
    std::vector<Check> checks = programChecks(textsInUse(language.language), temporaryFolder);
    for (Check& check : reactionChecks())
        checks.push_back(std::move(check));
    for (Check& check : machineChecks(conditionsOfThisMachine()))
        checks.push_back(std::move(check));
    return SelfTest::run(checks);
}

}  // namespace fleetwise
