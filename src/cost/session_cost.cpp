#include "cost/session_cost.h"

#include <algorithm>

namespace fleetwise {

namespace {

bool isUsed(const ModelSlice& slice) {
    return slice.tally.all() != 0;
}

/// Tokens that the report covers.
std::int64_t reportedTokens(const std::vector<BilledSlice>& billed) {
    std::int64_t sum = 0;
    for (const BilledSlice& slice : billed) {
        for (const std::int64_t part :
             {slice.input, slice.output, slice.cacheRead, slice.cacheCreation})
            sum = saturatingSum(sum, part);
    }
    return sum;
}

void addAmount(Money& sum, std::optional<double> amount) {
    sum += Money{.usd = amount, .isIncomplete = !amount};
}

/// What was billed, as far as the report goes; where it is missing or behind, the price book gives
/// an estimate.
Money billedMoney(const SessionCost& session, const Money& api) {
    if (!session.billedUSD) {
        return {
            .usd = api.usd, .isEstimated = api.usd.has_value(), .isIncomplete = api.isIncomplete};
    }
    if (reportedTokens(session.billedModels) >= session.tally().all()) {
        return {.usd = session.billedUSD};
    }
    return {.usd = std::max(*session.billedUSD, api.usd.value_or(0)),
            .isEstimated = true,
            .isIncomplete = api.isIncomplete};
}

}  // namespace

std::size_t SessionCost::modelsWithUsage() const {
    return static_cast<std::size_t>(
        std::count_if(usage.byModel.begin(), usage.byModel.end(),
                      [](const auto& entry) { return isUsed(entry.second); }));
}

std::set<std::string> SessionCost::modelsWithoutPrice(const Prices::Book& book) const {
    return figuresOf(usage.byModel, book).modelsWithoutPrice;
}

std::optional<double> SessionCost::apiCostUSD(const Prices::Book& book) const {
    return figuresOf(usage.byModel, book).api.usd;
}

std::optional<double> SessionCost::uncachedCostUSD(const Prices::Book& book) const {
    return figuresOf(usage.byModel, book).uncached.usd;
}

std::optional<Prices::Verdict> SessionCost::priceVerdict(const Prices::Book& book) const {
    if (!billedUSD && billedModels.empty()) return {};
    return Prices::verdict(billedModels, Prices::usualTolerance, book);
}

CostFigures SessionCost::figures(const Prices::Book& book) const {
    CostFigures figures = figuresOf(usage.byModel, book);
    figures.billed = billedMoney(*this, figures.api);
    return figures;
}

CostFigures figuresOf(const ModelSlices& slices, const Prices::Book& book) {
    CostFigures figures;
    for (const auto& [model, slice] : slices) {
        figures.tally += slice.tally;
        figures.requests = saturatingSum(figures.requests, slice.requests);
        if (!isUsed(slice)) continue;
        addAmount(figures.api, Prices::apiCost(slice.tally, model, book));
        addAmount(figures.uncached, Prices::uncachedCost(slice.tally, model, book));
        if (!Prices::price(model, book)) figures.modelsWithoutPrice.insert(model);
    }
    return figures;
}

}  // namespace fleetwise
