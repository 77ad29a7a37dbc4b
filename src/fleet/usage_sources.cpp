#include "fleet/usage_sources.h"

namespace fleetwise {

namespace {

/// Threads start threads, but not as deeply as this.
constexpr int deepestThreads = 16;

}  // namespace

UsageDirectory::UsageDirectory(const UsageSources& givenSources) : sources(givenSources) {
    for (const Session& session : sources.listed)
        byId.emplace(session.id, &session);
}

const Session* UsageDirectory::listed(const std::string& id) const {
    const auto found = byId.find(id);
    return found == byId.end() ? nullptr : found->second;
}

std::string UsageDirectory::folder(std::string id) const {
    for (int depth = 0; depth < deepestThreads; ++depth) {
        if (const Session* session = listed(id); session != nullptr && session->cwd) {
            return *session->cwd;
        }
        const ArchiveEntry* entry = archived(id);
        if (entry != nullptr && !entry->cwd.empty()) return entry->cwd;
        const auto cost = sources.costs.find(id);
        if (cost == sources.costs.end() || !cost->second->startedBy) return {};
        id = *cost->second->startedBy;
    }
    return {};
}

bool UsageDirectory::isPartOfAnother(const std::string& id) const {
    const auto cost = sources.costs.find(id);
    if (cost == sources.costs.end() || !cost->second->startedBy) return false;
    return sources.costs.contains(*cost->second->startedBy) && listed(id) == nullptr &&
           archived(id) == nullptr;
}

}  // namespace fleetwise
