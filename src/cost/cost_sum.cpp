#include "cost/cost_sum.h"

#include <algorithm>

namespace fleetwise {

namespace {

constexpr std::size_t longestDescent = 1000;  ///< more is a circle

const Lineage* shorter(const Lineage* left, const Lineage* right) {
    if (left == nullptr || right == nullptr) return left == nullptr ? right : left;
    return left->inheritedRequests <= right->inheritedRequests ? left : right;
}

bool isLonger(const Lineage* left, const Lineage* right) {
    return left != nullptr &&
           (right == nullptr || left->inheritedRequests > right->inheritedRequests);
}

ModelSlices slicesOf(const ModelTallies& tallies) {
    ModelSlices slices;
    for (const auto& [model, tally] : tallies)
        slices[model].tally = tally;
    return slices;
}

ModelTallies talliesOf(const Usage& usage, std::string_view day) {
    const auto found = usage.days.find(day);
    return found == usage.days.end() ? ModelTallies() : found->second;
}

}  // namespace

std::vector<CostSum::Ancestor> CostSum::descentOf(const std::string& id) const {
    std::vector<Ancestor> descent;
    const Lineage* shortest = nullptr;
    for (auto found = sessions.find(id); found != sessions.end() && descent.size() < longestDescent;
         found = sessions.find(*found->second->lineage->parent)) {
        descent.push_back({&found->first, shortest});
        const auto& lineage = found->second->lineage;
        if (!lineage || !lineage->parent) break;
        shortest = shorter(shortest, &*lineage);
    }
    return descent;
}

const Lineage* CostSum::commonPast(const std::string& id, const std::string& other) const {
    const std::vector<Ancestor> descent = descentOf(id);
    for (const Ancestor& theirs : descentOf(other)) {
        const auto met = std::ranges::find_if(
            descent, [&](const Ancestor& ours) { return *ours.id == *theirs.id; });
        if (met != descent.end()) return shorter(met->shortest, theirs.shortest);
    }
    return nullptr;
}

CostFigures CostSum::figuresWithout(const SessionCost& session, const Lineage& past) const {
    const CostFigures whole = session.figures(book);
    CostFigures figures = figuresOf((session.usage - past.inherited).byModel, book);
    figures.billed = whole.billed;
    if (!whole.billed.usd) return figures;
    const auto copied = figuresOf(past.inherited.byModel, book).api.usd;
    const auto less = whole.billed.isEstimated  ? copied
                      : past.inheritedBilledUSD ? past.inheritedBilledUSD
                                                : copied;
    figures.billed.usd = std::max(0.0, *whole.billed.usd - less.value_or(0));
    return figures;
}

CostFigures CostSum::of(const std::vector<std::string>& ids) const {
    CostFigures sum;
    std::map<std::string, std::vector<const std::string*>> families;
    for (const std::string& id : ids) {
        const auto found = sessions.find(id);
        if (found == sessions.end()) continue;
        const SessionCost& session = *found->second;
        const Lineage* past = nullptr;
        if (session.lineage) {
            auto& relatives = families[session.lineage->family];
            if (std::ranges::any_of(relatives, [&](const auto* other) { return *other == id; })) {
                continue;
            }
            for (const std::string* other : relatives) {
                const Lineage* common = commonPast(id, *other);
                if (isLonger(common, past)) past = common;
            }
            relatives.push_back(&found->first);
        }
        sum += past == nullptr ? session.figures(book) : figuresWithout(session, *past);
    }
    return sum;
}

CostFigures CostSum::ofDay(std::string_view day) const {
    ModelTallies sum;
    for (const auto& [id, session] : sessions) {
        for (const auto& [model, tally] : talliesOf(session->usage, day))
            sum[model] += tally;
        const auto& lineage = session->lineage;
        if (!lineage || !lineage->parent || !sessions.contains(*lineage->parent)) continue;
        for (const auto& [model, tally] : talliesOf(lineage->inherited, day))
            sum[model] = sum[model] - tally;
    }
    CostFigures figures = figuresOf(slicesOf(sum), book);
    figures.billed = figures.api;
    figures.billed.isEstimated = figures.api.usd.has_value();
    return figures;
}

}  // namespace fleetwise
