#pragma once

#include "cost/session_cost.h"

#include <cstddef>
#include <functional>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace fleetwise {

/// The sessions that begin with the same request: a session, its forks, and forks of forks. Sorted
/// by their trails, those that have most in common stand side by side, and each new request of the
/// family is counted once when every session leaves out what it shares with the one before it.
class ForkFamilies {
public:
    /// Reads the first requests of a session anew, as many as are given; nothing where that cannot
    /// be done.
    using ReadAgain =
        std::function<std::optional<SessionCost>(const std::string& id, std::size_t requests)>;

    explicit ForkFamilies(SessionCosts& givenSessions) : sessions(givenSessions) {}

    /// Has every beginning that two sessions share stand with one of them, as far as a file that
    /// tells it can be read. Whether anything was added.
    bool complete(const ReadAgain& readAgain);

private:
    /// How many requests, and which.
    using Past = std::pair<std::size_t, std::uint32_t>;
    using Members = std::vector<SessionCosts::iterator>;

    void nameCodexFamilies();
    std::string codexRoot(const std::string& id) const;
    void complete(Members members, const ReadAgain& readAgain);
    bool adopt(SessionCosts::iterator member, std::size_t requests, const ReadAgain& readAgain);

    SessionCosts& sessions;
    bool hasAdded = false;
};

}  // namespace fleetwise
