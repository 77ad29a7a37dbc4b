#include "sources/paths.h"

#include "foundation/atomic_file.h"
#include "foundation/directory.h"

#include <cstdlib>
#include <mutex>

namespace fleetwise {

namespace {

std::mutex homeLock;
std::string homeFolder;  // guarded by homeLock; empty until the first call

std::string inHome(std::string_view path) {
    return joinPath(Paths::home(), path);
}
std::string inState(std::string_view path) {
    return joinPath(Paths::stateDir(), path);
}

/// The desktop's folder for settings, $XDG_CONFIG_HOME; a relative path in it does not count.
std::string configDir() {
    const char* environment = std::getenv("XDG_CONFIG_HOME");
    return environment != nullptr && *environment == '/' ? environment : inHome(".config");
}

/// Where the desktop app keeps its files.
std::string desktopAppDir() {
    const std::string application = inHome("Library/Application Support/Claude");
    const bool isThere = inspectFile(application).has_value();
    return isThere ? application : joinPath(configDir(), "Claude");
}

}  // namespace

std::string Paths::home() {
    const std::lock_guard guard(homeLock);
    if (homeFolder.empty()) {
        const char* environment = std::getenv("HOME");
        homeFolder = environment != nullptr && *environment != '\0' ? environment : "/";
    }
    return homeFolder;
}

void Paths::setHome(std::string home) {
    const std::lock_guard guard(homeLock);
    homeFolder = std::move(home);
}

std::string Paths::stateDir() {
    return joinPath(inHome(".claude"), Brand::stateDirName);
}
std::string Paths::statusDir() {
    return inState("status");
}
std::string Paths::installedHook() {
    return inState("fleetwise-hook");
}
std::string Paths::hostsFile() {
    return inState("hosts.json");
}
std::string Paths::stallsFile() {
    return inState("stalls.json");
}
std::string Paths::attentionLogFile() {
    return inState("attention-log.json");
}
std::string Paths::pricesFile() {
    return inState("prices.json");
}
std::string Paths::archiveIndexFile() {
    return inState("archive-index.json");
}
std::string Paths::costIndexFile() {
    return inState("cost-index.json");
}
std::string Paths::usageSamplesFile() {
    return inState("usage-samples.json");
}
std::string Paths::settingsFile() {
    return inHome(".claude/settings.json");
}
std::string Paths::sessionsDir() {
    return inHome(".claude/sessions");
}
std::string Paths::projectsDir() {
    return inHome(".claude/projects");
}
std::string Paths::tasksDir() {
    return inHome(".claude/tasks");
}
std::string Paths::promptHistoryFile() {
    return inHome(".claude/history.jsonl");
}

std::string Paths::claudeConfigurationFile() {
    return inHome(".claude.json");
}
std::string Paths::desktopCodeSessions() {
    return joinPath(desktopAppDir(), "claude-code-sessions");
}
std::string Paths::usageHistoryFile() {
    return joinPath(desktopAppDir(), "plan-usage-history.json");
}
std::string Paths::codexDir() {
    return inHome(".codex");
}
std::string Paths::goalsFile() {
    return inHome(".codex/goals_1.sqlite");
}

tl::expected<void, std::error_code> Paths::ensureStateDirectories() {
    return makePrivateDirectory(statusDir());
}

}  // namespace fleetwise
