#include "cost/usage.h"

#include "foundation/saturating.h"

namespace fleetwise {

namespace {

/// The value under `key`, a new one where there is none yet.
template <typename Map>
auto& entry(Map& map, std::string_view key) {
    const auto found = map.find(key);
    if (found != map.end()) return found->second;
    return map.try_emplace(std::string(key)).first->second;
}

void count(std::int64_t& sum, std::int64_t more) {
    sum = saturatingSum(sum, more);
}

}  // namespace

void Usage::add(const Request& request) {
    ModelSlice& slice = entry(byModel, request.model);
    slice.tally += request.tally;
    count(slice.requests, 1);
    if (!request.effort.empty()) count(entry(slice.efforts, request.effort), 1);
    if (!request.day.empty()) entry(entry(days, request.day), request.model) += request.tally;
}

TokenTally Usage::tally() const {
    TokenTally sum;
    for (const auto& [model, slice] : byModel)
        sum += slice.tally;
    return sum;
}

std::int64_t Usage::requests() const {
    std::int64_t sum = 0;
    for (const auto& [model, slice] : byModel)
        count(sum, slice.requests);
    return sum;
}

Usage operator-(Usage whole, const Usage& part) {
    for (const auto& [model, less] : part.byModel) {
        ModelSlice& slice = whole.byModel[model];
        slice.tally = slice.tally - less.tally;
        slice.requests = saturatingDifference(slice.requests, less.requests);
        for (const auto& [effort, requests] : less.efforts)
            slice.efforts[effort] = saturatingDifference(slice.efforts[effort], requests);
    }
    for (const auto& [day, models] : part.days) {
        for (const auto& [model, tally] : models)
            whole.days[day][model] = whole.days[day][model] - tally;
    }
    return whole;
}

}  // namespace fleetwise
