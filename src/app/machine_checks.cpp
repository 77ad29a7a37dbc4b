#include "app/machine_checks.h"

#include "foundation/directory.h"
#include "foundation/json.h"
#include "foundation/regular_file.h"

#include <fmt/format.h>

#include <sys/stat.h>

#include <cerrno>
#include <optional>

namespace fleetwise {

namespace {

constexpr std::size_t maximumFileBytes = 32 << 20;
constexpr std::string_view backupPrefix = "settings.backup.";
constexpr unsigned privateFolder = 0700;
constexpr unsigned privateFile = 0600;

/// Kind and permissions of what `path` leads to; nothing where there is nothing.
std::optional<unsigned> modeOf(const std::string& path) {
    struct ::stat status {};
    if (::stat(path.c_str(), &status) != 0) return {};
    return status.st_mode;
}

std::string permissionsFault(const std::string& path, unsigned mode, unsigned expected) {
    return fmt::format("{} hat die Rechte {:04o} statt {:04o}", path, mode & 07777U, expected);
}

CheckResult checkFolder(const std::string& path) {
    Faults faults;
    const auto mode = modeOf(path);
    if (!mode) return faults.result();
    faults.expect(S_ISDIR(*mode), path + " ist kein Ordner");
    faults.expect((*mode & 07777U) == privateFolder, permissionsFault(path, *mode, privateFolder));
    return faults.result();
}

/// Backups are the agent's settings as they were, whatever they held.
bool isOwnRecord(const DirectoryEntry& entry) {
    return !entry.name.starts_with(backupPrefix);
}

void checkFile(const std::string& path, Faults& faults) {
    const auto contents = readRegularFile(path, maximumFileBytes);
    if (!contents && contents.error() == FileError::missing) return;
    faults.expect(contents.has_value(), path + " ist nicht lesbar");
    if (!contents) return;
    faults.expect(parseJson(*contents).has_value(), path + " ist kein JSON");
    const unsigned mode = modeOf(path).value_or(privateFile);
    faults.expect((mode & 07777U) == privateFile, permissionsFault(path, mode, privateFile));
}

CheckResult checkFiles(const std::string& folder) {
    Faults faults;
    for (const DirectoryEntry& entry : listDirectory(folder, ".json")) {
        if (isOwnRecord(entry)) checkFile(joinPath(folder, entry.name), faults);
    }
    return faults.result();
}

CheckResult checkHook(const MachineConditions& conditions) {
    if (!conditions.hooksInstalled) {
        return {.outcome = CheckOutcome::noted,
                .reason = "nicht eingerichtet, --install-hooks holt es nach"};
    }
    if (!conditions.hookIsCurrent) {
        return {.outcome = CheckOutcome::noted, .reason = "veraltet, --install-hooks erneuert ihn"};
    }
    return {};
}

CheckResult checkSessionBus(bool isReachable) {
    if (isReachable) return {};
    return {.outcome = CheckOutcome::noted,
            .reason = "nicht erreichbar, Mitteilungen und Symbol fehlen"};
}

CheckResult checkNotificationService(bool isThere) {
    if (isThere) return {};
    return {.outcome = CheckOutcome::noted,
            .reason = "kein Dienst dafür, nur das Symbol zeigt Nachrichten"};
}

}  // namespace

std::vector<Check> machineChecks(const MachineConditions& conditions) {
    return {
        {"Zustandsordner", [conditions] { return checkFolder(conditions.stateDirectory); }},
        {"Statusordner", [conditions] { return checkFolder(conditions.statusDirectory); }},
        {"Eigene Dateien", [conditions] { return checkFiles(conditions.stateDirectory); }},
        {"Hook", [conditions] { return checkHook(conditions); }},
        {"D-Bus", [conditions] { return checkSessionBus(conditions.reachesSessionBus); }},
        {"Mitteilungen",
         [conditions] { return checkNotificationService(conditions.hasNotificationService); }},
    };
}

}  // namespace fleetwise
