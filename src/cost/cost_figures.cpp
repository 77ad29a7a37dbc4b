#include "cost/cost_figures.h"

#include "foundation/saturating.h"

namespace fleetwise {

MoneyBasis moneyBasisFrom(std::string_view raw) {
    for (const auto basis : {MoneyBasis::api, MoneyBasis::uncached}) {
        if (rawValue(basis) == raw) return basis;
    }
    return MoneyBasis::billed;
}

std::string_view rawValue(MoneyBasis basis) {
    switch (basis) {
        case MoneyBasis::api:
            return "api";
        case MoneyBasis::uncached:
            return "uncached";
        case MoneyBasis::billed:
            break;
    }
    return "billed";
}

Money& Money::operator+=(const Money& other) {
    if (other.usd) usd = usd.value_or(0) + *other.usd;
    isEstimated |= other.isEstimated;
    isIncomplete |= other.isIncomplete;
    return *this;
}

CostFigures& CostFigures::operator+=(const CostFigures& other) {
    tally += other.tally;
    requests = saturatingSum(requests, other.requests);
    billed += other.billed;
    api += other.api;
    uncached += other.uncached;
    modelsWithoutPrice.insert(other.modelsWithoutPrice.begin(), other.modelsWithoutPrice.end());
    return *this;
}

const Money& CostFigures::money(MoneyBasis basis) const {
    switch (basis) {
        case MoneyBasis::api:
            return api;
        case MoneyBasis::uncached:
            return uncached;
        case MoneyBasis::billed:
            break;
    }
    return billed;
}

}  // namespace fleetwise
