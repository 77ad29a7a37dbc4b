#include "sources/codex_processes.h"

#include "sources/codex_store.h"

#include <array>

namespace fleetwise {

namespace {

constexpr Seconds lookInterval{1};

/// As installers name the program, and as the releases do. Helpers such as codex-linux-sandbox
/// have no session of their own.
constexpr std::array<std::string_view, 7> programNames = {
    "codex",
    "codex-x86_64-unknown-linux-musl",
    "codex-x86_64-unknown-linux-gnu",
    "codex-x86_64-apple-darwin",
    "codex-aarch64-unknown-linux-musl",
    "codex-aarch64-unknown-linux-gnu",
    "codex-aarch64-apple-darwin",
};

std::set<std::string> rolloutsAmong(const std::vector<std::string>& paths) {
    std::set<std::string> rollouts;
    for (const std::string_view path : paths) {
        const std::string_view name = path.substr(path.find_last_of('/') + 1);
        if (CodexStore::isRolloutName(name)) rollouts.emplace(name);
    }
    return rollouts;
}

/// A process that hides its folder was started from a shell in the same one, as a rule.
std::optional<std::string> folderOf(const ProcessTable& table, std::int32_t pid) {
    if (auto folder = table.workingDirectory(pid)) return folder;
    const auto process = table.process(pid);
    return process ? table.workingDirectory(process->parent) : std::nullopt;
}

std::vector<CodexProcess> look(const ProcessTable& table) {
    std::vector<CodexProcess> found;
    for (const std::int32_t pid : table.processesOf(programNames)) {
        found.push_back({.pid = pid,
                         .startedAt = table.startedAt(pid),
                         .cwd = folderOf(table, pid),
                         .openRollouts = rolloutsAmong(table.openFiles(pid))});
    }
    return found;
}

}  // namespace

CodexProcesses::CodexProcesses(const ProcessTable& givenTable) : table(givenTable) {}

std::vector<CodexProcess> CodexProcesses::observe(Date now) {
    {
        const std::lock_guard guard(lock);
        if (lastLook && now >= lastLook->at && now - lastLook->at < lookInterval)
            return lastLook->found;
    }
    std::vector<CodexProcess> found = look(table);
    const std::lock_guard guard(lock);
    lastLook = Look{.at = now, .found = found};
    return found;
}

}  // namespace fleetwise
