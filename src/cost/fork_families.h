#pragma once

#include "cost/session_cost.h"
#include "cost/session_usage.h"

#include <atomic>
#include <cstddef>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace fleetwise {

/// Finds out which sessions begin with copies of others' requests: forks, and forks of forks. Those
/// that begin with the same request are a family; how far two of them agree is their common past.
class ForkFamilies {
public:
    /// The requests that sessions told in this scan, by session id.
    using Fresh = std::map<std::string, SessionUsage, std::less<>>;

    /// Reads the first requests of a session anew, as many as are given; nothing where its file is
    /// gone.
    using ReadAgain =
        std::function<std::optional<SessionUsage>(const std::string& id, std::size_t requests)>;

    ForkFamilies(SessionCosts& givenSessions, const Fresh& givenFresh, ReadAgain givenReadAgain)
        : sessions(givenSessions), fresh(givenFresh), readAgain(std::move(givenReadAgain)) {}

    /// Brings the lineages of the sessions up to date. Those read in this scan still have what was
    /// known of them before. A family is measured again only where that can tell something new.
    /// Gives the ids for which that is still to be done, since the scan is stopping.
    std::vector<std::string> update(const std::atomic<bool>& isStopping);

private:
    struct Member;
    using Families = std::map<std::string, std::vector<std::string>>;

    std::string familyOf(const std::string& id) const;
    /// The families of several of which one may have another past than is known. All others are
    /// brought up to date.
    Families unsettledFamilies();
    bool isSettled(const std::string& id, const std::string& family) const;
    void noteRequests(const std::string& id, const std::string& family);
    void measure(const std::string& family, const std::vector<std::string>& ids);
    std::vector<Member> membersOf(const std::vector<std::string>& ids) const;
    void setLineage(const Member& member, Lineage lineage);
    void inherit(const Member& member, Lineage& lineage) const;

    SessionCosts& sessions;
    const Fresh& fresh;
    ReadAgain readAgain;
};

}  // namespace fleetwise
