#pragma once

#include "foundation/json.h"
#include "usage/goal_store.h"

#include <functional>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <variant>

namespace fleetwise {

/// The user's own goals per session, and when one of their limits is reached. Main thread only.
class OwnGoals {
public:
    struct Entry {
        std::string objective;
        std::optional<std::int64_t> tokenBudget;
        std::optional<double> costLimitUSD;
        std::optional<double> windowShareLimit;  ///< percent of the five-hour window
        Date createdAt;

        bool operator==(const Entry&) const = default;
    };

    struct CostBreach {
        double usd = 0;
        double limit = 0;

        bool operator==(const CostBreach&) const = default;
    };
    struct WindowBreach {
        double share = 0;  ///< percent of the five-hour window
        double limit = 0;

        bool operator==(const WindowBreach&) const = default;
    };
    /// A limit that is reached.
    using Breach = std::variant<CostBreach, WindowBreach>;

    using Entries = std::map<std::string, Entry>;  ///< by session id

    /// `stored` is the value of the setting `ownGoals`: {SESSION: {"objective", "tokenBudget",
    /// "costLimitUSD", "windowShareLimit", "createdAt"}}; entries of another form are passed over.
    /// `store` is given the whole of it after each change.
    OwnGoals(const Json& stored, std::function<void(const Json&)> store);

    const Entries& entries() const { return known; }
    std::optional<Entry> entry(const std::string& sessionId) const;
    void set(const std::string& sessionId, const Entry& entry);
    void remove(const std::string& sessionId);

    /// The goal of the session's entry, budgetLimited once its token budget is used up.
    std::optional<GoalStore::Goal> goal(const std::string& sessionId, std::int64_t tokensUsed,
                                        Date now) const;

    /// The first reached limit that was not announced in this run, the cost before the share; it
    /// counts as announced from now on. Figures that are not known reach nothing.
    std::optional<Breach> breachToAnnounce(const std::string& sessionId,
                                           std::optional<double> costUSD,
                                           std::optional<double> windowShare);

    /// Made of the session, the kind of the limit and the limit: another limit is another key,
    /// another objective is not.
    static std::string announcementKey(const std::string& sessionId, const Breach& breach);

private:
    Entries known;
    std::set<std::string> announced;  ///< keys of this run
    std::function<void(const Json&)> store;
};

}  // namespace fleetwise
