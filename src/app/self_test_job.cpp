#include "app/self_test_job.h"

#include "app/environment.h"
#include "app/machine_checks.h"
#include "app/program_checks.h"
#include "sources/hook_installer.h"
#include "sources/paths.h"

#include <QDBusConnection>

#include <filesystem>

namespace fleetwise {

namespace {

InterfaceTexts textsInUse(const std::string& language) {
    const std::string tables = programResource("share/fleetwise").value_or("");
    return {.language = language,
            .table = loadStringsTable(tables, language),
            .englishTable = loadStringsTable(tables, "en")};
}

MachineConditions conditionsOfThisMachine() {
    return {
        .stateDirectory = Paths::stateDir(),
        .statusDirectory = Paths::statusDir(),
        .hooksInstalled = HookInstaller::isInstalled(Paths::settingsFile(), Paths::installedHook()),
        .hookIsCurrent = HookInstaller::isCurrent(bundledHook(), Paths::installedHook()),
        .reachesSessionBus = QDBusConnection::sessionBus().isConnected()};
}

}  // namespace

SelfTest runSelfTest(const LanguageChoice& language) {
    std::error_code none;
    const std::string temporaryFolder = std::filesystem::temp_directory_path(none).string();
    std::vector<Check> checks = programChecks(textsInUse(language.language), temporaryFolder);
    for (Check& check : machineChecks(conditionsOfThisMachine()))
        checks.push_back(std::move(check));
    return SelfTest::run(checks);
}

}  // namespace fleetwise
