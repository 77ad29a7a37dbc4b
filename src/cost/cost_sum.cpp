#include "cost/cost_sum.h"

#include <algorithm>

namespace fleetwise {

namespace {

CostFigures figuresWithout(const SessionCost& session, const Beginning& past,
                           const Prices::Book& book) {
    const CostFigures whole = session.figures(book);
    CostFigures figures = figuresOf((session.usage - past.usage).byModel, book);
    figures.billed = whole.billed;
    if (!whole.billed.usd) return figures;
    const auto priced = figuresOf(past.usage.byModel, book).api.usd;
    const bool isBilled = !whole.billed.isEstimated && past.billedUSD;
    const double less = (isBilled ? past.billedUSD : priced).value_or(0);
    figures.billed.usd = std::max(0.0, *whole.billed.usd - less);
    return figures;
}

ModelSlices slicesOf(const ModelTallies& tallies) {
    ModelSlices slices;
    for (const auto& [model, tally] : tallies)
        slices[model].tally = tally;
    return slices;
}

/// Calls `visit(model, tally)` for what was used on the day.
template <typename Visit>
void forEachTally(const Usage& usage, std::string_view day, Visit&& visit) {
    const auto found = usage.days.find(day);
    if (found == usage.days.end()) return;
    for (const auto& [model, tally] : found->second)
        visit(model, tally);
}

/// Calls `visit(model, tally)` for what was used on the day `first` and after it, or ever, where it
/// is empty.
template <typename Visit>
void forEachTallySince(const Usage& usage, std::string_view first, Visit&& visit) {
    if (first.empty()) {
        for (const auto& [model, slice] : usage.byModel)
            visit(model, slice.tally);
        return;
    }
    for (auto day = usage.days.lower_bound(first); day != usage.days.end(); ++day) {
        for (const auto& [model, tally] : day->second)
            visit(model, tally);
    }
}

/// Sessions whose files are gone may still be told by the days of another time zone, so that more
/// may be taken off a day than it has.
void dropNegatives(ModelTallies& sum) {
    for (auto& [model, tally] : sum)
        tally = tally.combined(
            {}, [](std::int64_t count, std::int64_t) { return std::max<std::int64_t>(count, 0); });
}

}  // namespace

CostSum::CostSum(std::shared_ptr<const SessionCosts> givenSessions)
    : sessions(std::move(givenSessions)) {
    for (const auto& [id, session] : *sessions) {
        for (const Beginning& beginning : session->beginnings)
            beginnings[{session->family, beginning.requests, beginning.end}] = &beginning;
    }
}

const Beginning* CostSum::shared(const SessionCost& session, const SessionCost& before) const {
    if (session.family.empty() || session.family != before.family) return nullptr;
    const std::size_t requests = session.trail.commonPast(before.trail);
    if (requests == 0) return nullptr;
    const auto found = beginnings.find({session.family, requests, session.trail.end(requests)});
    return found == beginnings.end() ? nullptr : found->second;
}

template <typename Visit>
void CostSum::forEachOnce(Members given, Visit&& visit) const {
    std::ranges::sort(given, [](const SessionCost* left, const SessionCost* right) {
        const auto order = left->family <=> right->family;
        return order == 0 ? left->trail < right->trail : order < 0;
    });
    const SessionCost* before = nullptr;
    for (const SessionCost* session : given) {
        visit(*session, before == nullptr ? nullptr : shared(*session, *before));
        before = session;
    }
}

CostSum::Members CostSum::members(const std::vector<std::string>& ids) const {
    Members found;
    for (const std::string& id : ids) {
        const auto known = sessions->find(id);
        if (known != sessions->end()) found.push_back(known->second.get());
    }
    std::ranges::sort(found);
    found.erase(std::unique(found.begin(), found.end()), found.end());
    return found;
}

CostSum::Members CostSum::allMembers() const {
    Members all;
    all.reserve(sessions->size());
    for (const auto& [id, session] : *sessions)
        all.push_back(session.get());
    return all;
}

CostFigures CostSum::of(const std::vector<std::string>& ids, const Prices::Book& book) const {
    CostFigures sum;
    forEachOnce(members(ids), [&](const SessionCost& session, const Beginning* past) {
        sum += past == nullptr ? session.figures(book) : figuresWithout(session, *past, book);
    });
    return sum;
}

template <typename Visit>
void CostSum::forEachSessionOnce(Visit&& visit) const {
    forEachOnce(allMembers(), visit);
}

CostFigures CostSum::ofDay(std::string_view day, const Prices::Book& book) const {
    ModelTallies sum;
    forEachSessionOnce([&](const SessionCost& session, const Beginning* past) {
        forEachTally(session.usage, day,
                     [&](const auto& model, const auto& tally) { sum[model] += tally; });
        if (past == nullptr) return;
        forEachTally(past->usage, day, [&](const auto& model, const auto& tally) {
            sum[model] = sum[model] - tally;
        });
    });
    dropNegatives(sum);
    CostFigures figures = figuresOf(slicesOf(sum), book);
    figures.billed = figures.api;
    figures.billed.isEstimated = figures.api.usd.has_value();
    return figures;
}

std::map<std::string, ModelTallies, std::less<>> CostSum::days() const {
    std::map<std::string, ModelTallies, std::less<>> sum;
    forEachSessionOnce([&](const SessionCost& session, const Beginning* past) {
        for (const auto& [day, models] : session.usage.days) {
            for (const auto& [model, tally] : models)
                sum[day][model] += tally;
        }
        if (past == nullptr) return;
        for (const auto& [day, models] : past->usage.days) {
            for (const auto& [model, tally] : models)
                sum[day][model] = sum[day][model] - tally;
        }
    });
    for (auto& [day, models] : sum)
        dropNegatives(models);
    return sum;
}

ModelTallies CostSum::usedBy(Members given, std::string_view first) const {
    ModelTallies sum;
    forEachOnce(std::move(given), [&](const SessionCost& session, const Beginning* past) {
        forEachTallySince(session.usage, first,
                          [&](const auto& model, const auto& tally) { sum[model] += tally; });
        if (past == nullptr) return;
        forEachTallySince(past->usage, first, [&](const auto& model, const auto& tally) {
            sum[model] = sum[model] - tally;
        });
    });
    dropNegatives(sum);
    return sum;
}

ModelTallies CostSum::used(const std::vector<std::string>& ids, std::string_view first) const {
    return usedBy(members(ids), first);
}

ModelTallies CostSum::used(std::string_view first) const {
    return usedBy(allMembers(), first);
}

}  // namespace fleetwise
