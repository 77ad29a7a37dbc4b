#pragma once

#include "cost/cost_figures.h"
#include "cost/prices.h"
#include "cost/request_trail.h"
#include "cost/usage.h"
#include "session/session_agent.h"

#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace fleetwise {

/// What the agent reports to have billed for one model.
using BilledSlice = Prices::BilledModel;

/// What a session's first requests used: those that another session made as well, since one of the
/// two was forked from the other.
struct Beginning {
    std::size_t requests = 0;
    std::uint32_t end = 0;  ///< RequestTrail::end of them
    Usage usage;
    std::optional<double> billedUSD;  ///< by the report among them

    bool operator==(const Beginning&) const = default;
};

/// What one session used, and what its agent says that it cost.
struct SessionCost {
    SessionAgent agent;
    Usage usage;
    std::optional<double> billedUSD;        ///< in all, by the agent's report; absent without one
    std::vector<BilledSlice> billedModels;  ///< the report by model, ascending by id
    std::optional<std::string> lastModel;   ///< of the latest request
    std::optional<std::string> lastEffort;
    std::optional<std::string> startedBy;  ///< of Codex: the thread this is a fork or subagent of

    /// The same for all sessions that may have begun as one; empty where no request has a key. Of
    /// Claude Code it is the first request's key.
    std::string family;
    RequestTrail trail;  ///< of the session's own file
    std::vector<Beginning> beginnings;

    bool operator==(const SessionCost&) const = default;

    TokenTally tally() const { return usage.tally(); }
    std::int64_t requests() const { return usage.requests(); }

    /// How many models have used tokens.
    std::size_t modelsWithUsage() const;

    /// The models that have used tokens and have no price.
    std::set<std::string> modelsWithoutPrice(const Prices::Book& book = Prices::current()) const;

    /// The sum over the models; nothing where none of them gives an amount.
    std::optional<double> apiCostUSD(const Prices::Book& book = Prices::current()) const;
    std::optional<double> uncachedCostUSD(const Prices::Book& book = Prices::current()) const;

    /// How the agent's report compares with the book; nothing without a report.
    std::optional<Prices::Verdict> priceVerdict(const Prices::Book& book = Prices::current()) const;

    CostFigures figures(const Prices::Book& book = Prices::current()) const;
};

/// What is used by models, priced. Nothing is billed in it.
CostFigures figuresOf(const ModelSlices& slices, const Prices::Book& book);

/// Session id to what it cost.
using SessionCosts = std::map<std::string, std::shared_ptr<const SessionCost>, std::less<>>;

}  // namespace fleetwise
