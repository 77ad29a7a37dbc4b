#pragma once

#include "cost/session_cost.h"

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <tuple>
#include <vector>

namespace fleetwise {

/// Sums over several sessions, in which requests that forks have copied from each other count once.
class CostSum {
public:
    explicit CostSum(std::shared_ptr<const SessionCosts> givenSessions);

    /// Over the sessions with these ids, each once; unknown ones count for nothing.
    CostFigures of(const std::vector<std::string>& ids, const Prices::Book& book) const;

    /// What all sessions used on one day of the calendar, "2026-11-21". Agents do not bill by the
    /// day, so `billed` is an estimate by the price book.
    CostFigures ofDay(std::string_view day, const Prices::Book& book) const;

    /// What all sessions used on each day of the calendar, by its name.
    std::map<std::string, ModelTallies, std::less<>> days() const;

    /// What the sessions with these ids used by model on the day `first` of the calendar and after
    /// it; whenever that was, undated requests included, where `first` is empty.
    ModelTallies used(const std::vector<std::string>& ids, std::string_view first) const;
    /// As above, by all sessions.
    ModelTallies used(std::string_view first) const;

private:
    /// A family, and which of its first requests.
    using Past = std::tuple<std::string_view, std::size_t, std::uint32_t>;
    using Members = std::vector<const SessionCost*>;

    /// Calls `visit(session, beginning)` for each of the sessions, which are sorted for it, with
    /// what it shares with one visited before; nullptr where that is nothing, or is not known.
    template <typename Visit>
    void forEachOnce(Members given, Visit&& visit) const;
    /// As above, over all sessions.
    template <typename Visit>
    void forEachSessionOnce(Visit&& visit) const;
    /// The sessions with these ids that are known, each once.
    Members members(const std::vector<std::string>& ids) const;
    Members allMembers() const;
    ModelTallies usedBy(Members given, std::string_view first) const;
    const Beginning* shared(const SessionCost& session, const SessionCost& before) const;

    std::shared_ptr<const SessionCosts> sessions;
    std::map<Past, const Beginning*> beginnings;
};

}  // namespace fleetwise
