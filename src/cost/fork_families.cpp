#include "cost/fork_families.h"

#include <fmt/format.h>

#include <algorithm>

namespace fleetwise {

namespace {

constexpr int longestDescent = 1000;  ///< of threads; more is a circle

}  // namespace

bool ForkFamilies::complete(const ReadAgain& readAgain) {
    nameCodexFamilies();
    std::map<std::string_view, Members> families;
    for (auto session = sessions.begin(); session != sessions.end(); ++session) {
        const SessionCost& cost = *session->second;
        if (!cost.family.empty() && cost.trail.size() > 0) families[cost.family].push_back(session);
    }
    for (auto& [family, members] : families) {
        if (members.size() > 1) complete(std::move(members), readAgain);
    }
    return hasAdded;
}

/// A Codex thread says itself where it comes from. Running totals alone would make strangers a
/// family.
void ForkFamilies::nameCodexFamilies() {
    for (auto& [id, session] : sessions) {
        if (!session->agent.isCodex() || session->trail.size() == 0) continue;
        std::string family = fmt::format("{}/{:08x}", codexRoot(id), session->trail.end(1));
        if (family == session->family) continue;
        auto renamed = std::make_shared<SessionCost>(*session);
        renamed->family = std::move(family);
        session = std::move(renamed);
        hasAdded = true;
    }
}

std::string ForkFamilies::codexRoot(const std::string& id) const {
    std::string root = id;
    for (int step = 0; step < longestDescent; ++step) {
        const auto found = sessions.find(root);
        if (found == sessions.end() || !found->second->startedBy) return root;
        root = *found->second->startedBy;
    }
    return id;
}

void ForkFamilies::complete(Members members, const ReadAgain& readAgain) {
    std::set<Past> known;
    for (const auto& member : members) {
        for (const Beginning& beginning : member->second->beginnings)
            known.emplace(beginning.requests, beginning.end);
    }
    std::ranges::sort(members, [](const auto& left, const auto& right) {
        return left->second->trail < right->second->trail;
    });
    for (std::size_t index = 1; index < members.size(); ++index) {
        const RequestTrail& trail = members[index]->second->trail;
        const std::size_t shared = trail.commonPast(members[index - 1]->second->trail);
        if (shared == 0) continue;
        const Past past{shared, trail.end(shared)};
        if (known.contains(past)) continue;
        // Neighbours on either side that have this beginning, too, may still have a file to read.
        const auto shares = [&](const auto& member) {
            const RequestTrail& other = member->second->trail;
            return other.size() >= shared && other.end(shared) == past.second;
        };
        for (const auto& member : members) {
            if (!shares(member) || !adopt(member, shared, readAgain)) continue;
            known.insert(past);
            break;
        }
    }
}

/// Keeps with the session what its first requests used, as its file tells.
bool ForkFamilies::adopt(SessionCosts::iterator member, std::size_t requests,
                         const ReadAgain& readAgain) {
    const auto read = readAgain(member->first, requests);
    const std::uint32_t end = member->second->trail.end(requests);
    // The file may be another one by now.
    if (!read || read->trail.size() != requests || read->trail.end(requests) != end) return false;
    auto session = std::make_shared<SessionCost>(*member->second);
    session->beginnings.push_back(
        {.requests = requests, .end = end, .usage = read->usage, .billedUSD = read->billedUSD});
    member->second = std::move(session);
    return hasAdded = true;
}

}  // namespace fleetwise
