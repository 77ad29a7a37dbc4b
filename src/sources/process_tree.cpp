#include "sources/process_tree.h"

#include "sources/desktop_entry.h"

namespace fleetwise {

namespace {

// Deeper than any real tree; it also ends the walk should parents form a circle while it runs.
constexpr int maximumSteps = 64;

}  // namespace

ProcessTree::ProcessTree(const ProcessTable& processes, std::vector<std::string> folders)
    : table(processes), applicationFolders(std::move(folders)) {}

std::optional<HostApplication> ProcessTree::guiAncestor(std::int32_t pid) {
    const auto process = table.process(pid);
    {
        const std::lock_guard guard(lock);
        const auto found = known.find(pid);
        if (found != known.end()) {
            if (process && process->start == found->second.start) return found->second.host;
            known.erase(found);
        }
    }
    if (!process) return {};
    auto host = findHost(pid);
    const std::lock_guard guard(lock);
    known.insert_or_assign(pid, Known{.start = process->start, .host = host});
    return host;
}

void ProcessTree::forgetAllBut(const std::set<std::int32_t>& pids) {
    const std::lock_guard guard(lock);
    std::erase_if(known, [&](const auto& entry) { return !pids.contains(entry.first); });
}

std::optional<HostApplication> ProcessTree::findHost(std::int32_t pid) const {
    std::optional<std::string> scopeId;
    std::int32_t current = pid;
    for (int step = 0; step < maximumSteps && current > 1; ++step) {
        // The process itself is the agent, whatever its program is called.
        const auto executable = current == pid ? std::nullopt : table.executable(current);
        if (auto host = executable ? HostApplications::ofExecutable(*executable) : std::nullopt) {
            if (auto name = DesktopEntry::nameOf(host->bundleId, applicationFolders)) {
                host->name = *std::move(name);
            }
            return host;
        }
        if (!scopeId) {
            if (const auto unit = table.applicationScope(current)) {
                scopeId = HostApplications::idOfUnit(*unit);
            }
        }
        const auto process = table.process(current);
        current = process ? process->parent : 0;
    }
    if (!scopeId) return {};
    auto name = DesktopEntry::nameOf(*scopeId, applicationFolders);
    return HostApplication{.name = name.value_or(*scopeId), .bundleId = *scopeId};
}

}  // namespace fleetwise
