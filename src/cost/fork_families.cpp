#include "cost/fork_families.h"

#include <algorithm>
#include <tuple>

namespace fleetwise {

namespace {

constexpr int longestDescent = 1000;  ///< of threads; more is a circle

using Marks = std::vector<RequestMark>;

std::size_t commonPast(const Marks& left, const Marks& right) {
    const auto [end, other] = std::mismatch(
        left.begin(), left.end(), right.begin(), right.end(),
        [](const RequestMark& mark, const RequestMark& twin) { return mark.key == twin.key; });
    return static_cast<std::size_t>(end - left.begin());
}

}  // namespace

struct ForkFamilies::Member {
    std::string id;
    Marks requests;
    std::size_t shared = 0;  ///< the longest past in common with another member

    /// When it went its own way: the earlier one is taken for the original. One that has not yet
    /// done so comes first.
    Date departure() const { return shared < requests.size() ? requests[shared].at : Date(); }

    bool isOlderThan(const Member& other) const {
        const auto rank = [](const Member& member) {
            return std::tuple(member.departure(), member.requests.size(), std::cref(member.id));
        };
        const auto [at, count, ownId] = rank(*this);
        const auto [otherAt, otherCount, otherId] = rank(other);
        return std::tie(at, count, ownId.get()) < std::tie(otherAt, otherCount, otherId.get());
    }
};

std::vector<std::string> ForkFamilies::update(const std::atomic<bool>& isStopping) {
    std::vector<std::string> unmeasured;
    if (fresh.empty()) return unmeasured;
    for (const auto& [family, ids] : unsettledFamilies()) {
        measure(family, ids);
        if (isStopping) unmeasured.insert(unmeasured.end(), ids.begin(), ids.end());
    }
    return unmeasured;
}

/// The family of a session; empty where its requests have no keys. A Codex thread says itself where
/// it comes from.
std::string ForkFamilies::familyOf(const std::string& id) const {
    const SessionCost& session = *sessions.at(id);
    if (!session.agent.isCodex()) {
        const auto read = fresh.find(id);
        if (read != fresh.end()) return read->second.firstKey;
        return session.lineage ? session.lineage->family : std::string();
    }
    std::string root = id;
    for (int step = 0; step < longestDescent; ++step) {
        const auto found = sessions.find(root);
        if (found == sessions.end() || !found->second->startedBy) return root;
        const std::string& parent = *found->second->startedBy;
        if (!sessions.contains(parent)) return root;
        root = parent;
    }
    return id;
}

bool ForkFamilies::isSettled(const std::string& id, const std::string& family) const {
    const auto& known = sessions.at(id)->lineage;
    if (!known || known->family != family) return false;
    const auto read = fresh.find(id);
    if (read == fresh.end()) return true;
    // Once it has gone its own way, what it shares does not change, unless it was written anew.
    const auto requests = static_cast<std::int64_t>(read->second.requests.size());
    return known->requests > known->shared && requests >= known->requests;
}

void ForkFamilies::noteRequests(const std::string& id, const std::string& family) {
    const auto read = fresh.find(id);
    if (read == fresh.end()) return;
    auto session = std::make_shared<SessionCost>(*sessions.at(id));
    if (!isSettled(id, family)) session->lineage.emplace().family = family;
    session->lineage->requests = static_cast<std::int64_t>(read->second.requests.size());
    if (family.empty()) session->lineage.reset();
    sessions[id] = std::move(session);
}

ForkFamilies::Families ForkFamilies::unsettledFamilies() {
    Families families;
    std::vector<std::string> unsettled;
    for (const auto& [id, session] : sessions) {
        std::string family = familyOf(id);
        if (!isSettled(id, family)) unsettled.push_back(family);
        families[std::move(family)].push_back(id);
    }
    std::ranges::sort(unsettled);
    for (auto& [family, ids] : families) {
        const bool hasNews = std::ranges::binary_search(unsettled, family);
        if (ids.size() > 1 && hasNews && !family.empty()) continue;
        for (const std::string& id : ids)
            noteRequests(id, family);
        ids.clear();
    }
    std::erase_if(families, [](const auto& family) { return family.second.empty(); });
    return families;
}

std::vector<ForkFamilies::Member> ForkFamilies::membersOf(
    const std::vector<std::string>& ids) const {
    std::vector<Member> members;
    for (const std::string& id : ids) {
        if (const auto read = fresh.find(id); read != fresh.end()) {
            members.push_back({.id = id, .requests = read->second.requests});
        } else if (auto again = readAgain(id, allRequests)) {
            members.push_back({.id = id, .requests = std::move(again->requests)});
        }
    }
    for (Member& member : members) {
        for (const Member& other : members) {
            if (&member == &other) continue;
            member.shared = std::max(member.shared, commonPast(member.requests, other.requests));
        }
    }
    std::ranges::sort(
        members, [](const Member& left, const Member& right) { return left.isOlderThan(right); });
    return members;
}

void ForkFamilies::measure(const std::string& family, const std::vector<std::string>& ids) {
    const std::vector<Member> members = membersOf(ids);
    for (auto member = members.begin(); member != members.end(); ++member) {
        Lineage lineage{.family = family,
                        .requests = static_cast<std::int64_t>(member->requests.size()),
                        .shared = static_cast<std::int64_t>(member->shared)};
        std::size_t longest = 0;
        for (auto elder = members.begin(); elder != member; ++elder) {
            const std::size_t past = commonPast(member->requests, elder->requests);
            if (past <= longest) continue;
            longest = past;
            lineage.parent = elder->id;
        }
        lineage.inheritedRequests = static_cast<std::int64_t>(longest);
        setLineage(*member, std::move(lineage));
    }
}

void ForkFamilies::setLineage(const Member& member, Lineage lineage) {
    if (lineage.parent) inherit(member, lineage);
    auto session = std::make_shared<SessionCost>(*sessions.at(member.id));
    session->lineage = std::move(lineage);
    sessions[member.id] = std::move(session);
}

/// What the copied requests used, as it stands in the copy.
void ForkFamilies::inherit(const Member& member, Lineage& lineage) const {
    const auto copied = readAgain(member.id, static_cast<std::size_t>(lineage.inheritedRequests));
    if (!copied) {
        lineage.parent.reset();
        lineage.inheritedRequests = 0;
        return;
    }
    lineage.inherited = copied->cost.usage;
    lineage.inheritedBilledUSD = copied->cost.billedUSD;
}

}  // namespace fleetwise
