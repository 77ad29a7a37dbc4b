#pragma once

#include "cost/session_cost.h"

#include <string>
#include <string_view>
#include <vector>

namespace fleetwise {

/// Sums over several sessions, in which requests that forks have copied from each other count once.
class CostSum {
public:
    /// Both outlive this.
    CostSum(const SessionCosts& givenSessions, const Prices::Book& givenBook)
        : sessions(givenSessions), book(givenBook) {}

    /// Over the sessions with these ids, each once; unknown ones count for nothing.
    CostFigures of(const std::vector<std::string>& ids) const;

    /// What all sessions used on one day of the calendar, "2026-11-21". Agents do not bill by the
    /// day, so `billed` is an estimate by the price book.
    CostFigures ofDay(std::string_view day) const;

private:
    /// What stands between a session and one it descends from.
    struct Ancestor {
        const std::string* id = nullptr;
        const Lineage* shortest = nullptr;  ///< the least that was passed on; nothing for itself
    };

    std::vector<Ancestor> descentOf(const std::string& id) const;
    /// The lineage that holds what the two have in common; nothing where that is nothing.
    const Lineage* commonPast(const std::string& id, const std::string& other) const;
    CostFigures figuresWithout(const SessionCost& session, const Lineage& past) const;

    const SessionCosts& sessions;
    const Prices::Book& book;
};

}  // namespace fleetwise
