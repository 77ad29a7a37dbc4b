#include "usage/own_goals.h"

#include "foundation/text.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <type_traits>
#include <utility>

namespace fleetwise {

namespace {

/// Nothing for what limits nothing.
template <typename Value>
std::optional<Value> asLimit(std::optional<Value> value) {
    if constexpr (std::is_floating_point_v<Value>) {
        if (value && !std::isfinite(*value)) return {};
    }
    return value && *value > 0 ? value : std::nullopt;
}

/// At the limit counts, also where a sum of fractions falls short of it by its rounding.
bool reaches(double figure, double limit) {
    constexpr double rounding = 1e-9;
    return figure + rounding >= limit;
}

OwnGoals::Entry valid(OwnGoals::Entry entry) {
    entry.objective = trimmed(entry.objective);
    entry.tokenBudget = asLimit(entry.tokenBudget);
    entry.costLimitUSD = asLimit(entry.costLimitUSD);
    entry.windowShareLimit = asLimit(entry.windowShareLimit);
    return entry;
}

bool isEmpty(const OwnGoals::Entry& entry) {
    return entry.objective.empty() && !entry.tokenBudget && !entry.costLimitUSD &&
           !entry.windowShareLimit;
}

std::optional<OwnGoals::Entry> entryFrom(const Json& stored) {
    const auto createdAt = member<Date>(stored, "createdAt");
    if (!stored.is_object() || !createdAt) return {};
    OwnGoals::Entry entry =
        valid({.objective = member<std::string>(stored, "objective").value_or(""),
               .tokenBudget = member<std::int64_t>(stored, "tokenBudget"),
               .costLimitUSD = member<double>(stored, "costLimitUSD"),
               .windowShareLimit = member<double>(stored, "windowShareLimit"),
               .createdAt = *createdAt});
    if (isEmpty(entry)) return {};
    return entry;
}

Json stored(const OwnGoals::Entries& entries) {
    Json all = Json::object();
    for (const auto& [id, entry] : entries) {
        Json& one = all[id];
        one["objective"] = entry.objective;
        one["createdAt"] = internetDate(entry.createdAt);
        if (entry.tokenBudget) one["tokenBudget"] = *entry.tokenBudget;
        if (entry.costLimitUSD) one["costLimitUSD"] = *entry.costLimitUSD;
        if (entry.windowShareLimit) one["windowShareLimit"] = *entry.windowShareLimit;
    }
    return all;
}

}  // namespace

OwnGoals::OwnGoals(const Json& given, std::function<void(const Json&)> givenStore)
    : store(std::move(givenStore)) {
    if (!given.is_object()) return;
    for (const auto& [id, value] : given.items()) {
        if (auto entry = entryFrom(value)) known.emplace(id, *std::move(entry));
    }
}

std::optional<OwnGoals::Entry> OwnGoals::entry(const std::string& sessionId) const {
    const auto found = known.find(sessionId);
    if (found == known.end()) return {};
    return found->second;
}

void OwnGoals::set(const std::string& sessionId, const Entry& given) {
    Entry entry = valid(given);
    if (isEmpty(entry)) return remove(sessionId);
    if (this->entry(sessionId) == entry) return;
    known.insert_or_assign(sessionId, std::move(entry));
    store(stored(known));
}

void OwnGoals::remove(const std::string& sessionId) {
    if (known.erase(sessionId) > 0) store(stored(known));
}

std::optional<GoalStore::Goal> OwnGoals::goal(const std::string& sessionId, std::int64_t tokensUsed,
                                              Date now) const {
    const auto found = known.find(sessionId);
    if (found == known.end()) return {};
    const Entry& entry = found->second;
    const bool isUsedUp = entry.tokenBudget && tokensUsed >= *entry.tokenBudget;
    return GoalStore::Goal{
        .sessionId = sessionId,
        .objective = entry.objective,
        .status = isUsedUp ? GoalStore::Status::budgetLimited : GoalStore::Status::active,
        .tokenBudget = entry.tokenBudget,
        .tokensUsed = tokensUsed,
        .timeUsed = std::max(0.0, (now - entry.createdAt).count()),
        .isOwn = true};
}

std::optional<OwnGoals::Breach> OwnGoals::breachToAnnounce(const std::string& sessionId,
                                                           std::optional<double> costUSD,
                                                           std::optional<double> windowShare) {
    const auto found = known.find(sessionId);
    if (found == known.end()) return {};
    const auto& costLimit = found->second.costLimitUSD;
    const auto& shareLimit = found->second.windowShareLimit;
    const auto isNew = [&](const Breach& breach) {
        return announced.insert(announcementKey(sessionId, breach)).second;
    };
    if (costLimit && costUSD && reaches(*costUSD, *costLimit)) {
        const CostBreach breach{.usd = *costUSD, .limit = *costLimit};
        if (isNew(breach)) return breach;
    }
    if (shareLimit && windowShare && reaches(*windowShare, *shareLimit)) {
        const WindowBreach breach{.share = *windowShare, .limit = *shareLimit};
        if (isNew(breach)) return breach;
    }
    return {};
}

std::string OwnGoals::announcementKey(const std::string& sessionId, const Breach& breach) {
    const auto* const cost = std::get_if<CostBreach>(&breach);
    if (cost != nullptr) return fmt::format("{}-cost-{}", sessionId, cost->limit);
    return fmt::format("{}-window-{}", sessionId, std::get<WindowBreach>(breach).limit);
}

}  // namespace fleetwise
