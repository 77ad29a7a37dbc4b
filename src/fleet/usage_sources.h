#pragma once

#include "cost/session_cost.h"
#include "fleet/archive_entry.h"
#include "fleet/session.h"

#include <functional>
#include <string>
#include <unordered_map>
#include <vector>

namespace fleetwise {

/// What is known of sessions: their costs, those that are listed, and how to find the others in
/// the archive; null for one that is not there.
struct UsageSources {
    const SessionCosts& costs;
    const std::vector<Session>& listed;
    std::function<const ArchiveEntry*(const std::string& id)> archived;
};

/// Finds what tables of use tell of a session beside its costs. The sources outlive it.
class UsageDirectory {
public:
    explicit UsageDirectory(const UsageSources& givenSources);

    /// Null where it is not listed.
    const Session* listed(const std::string& id) const;
    const ArchiveEntry* archived(const std::string& id) const { return sources.archived(id); }

    /// Where it works; empty where nothing tells. A thread that Codex started has the folder of the
    /// one that started it.
    std::string folder(std::string id) const;

    /// A thread that counts with the one that started it, and is nowhere shown by itself.
    bool isPartOfAnother(const std::string& id) const;

private:
    const UsageSources& sources;
    std::unordered_map<std::string, const Session*> byId;
};

}  // namespace fleetwise
