#pragma once

#include "cost/prices.h"
#include "cost/token_tally.h"

#include <cstdint>
#include <optional>
#include <set>
#include <string>
#include <string_view>

namespace fleetwise {

/// By what money is told.
enum class MoneyBasis {
    billed,    ///< what the agent says it billed
    api,       ///< what the tokens cost by the price book
    uncached,  ///< what they would cost without a prompt cache
};

/// The setting's value for it: "billed", "api" or "uncached"; anything else is `billed`.
MoneyBasis moneyBasisFrom(std::string_view raw);
std::string_view rawValue(MoneyBasis basis);

/// An amount, and how sure it is.
struct Money {
    std::optional<double> usd;  ///< nothing where nothing is known, which is not the same as 0
    bool isEstimated = false;  ///< the agent's own report is missing or older than the last request
    bool isIncomplete = false;  ///< something that was used has no price and is not in it

    bool operator==(const Money&) const = default;
    Money& operator+=(const Money& other);
};

/// What one session, or several together, used and what that costs.
struct CostFigures {
    TokenTally tally;
    std::int64_t requests = 0;
    Money billed;
    Money api;
    Money uncached;
    std::set<std::string> modelsWithoutPrice;  ///< ids of models that were used

    bool operator==(const CostFigures&) const = default;
    CostFigures& operator+=(const CostFigures& other);

    const Money& money(MoneyBasis basis) const;
};

}  // namespace fleetwise
