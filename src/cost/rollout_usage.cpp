#include "cost/rollout_usage.h"

#include "sources/rollout_head.h"
#include "sources/rollout_line.h"

#include <functional>

namespace fleetwise {

namespace {

using Going = LineSearch::Going;

bool contains(const TokenTally& total, const TokenTally& part) {
    bool isContained = true;
    static_cast<void>(total.combined(part, [&](std::int64_t whole, std::int64_t share) {
        isContained = isContained && whole >= share;
        return whole;
    }));
    return isContained;
}

/// Tells totals apart: two threads with the same one have the same past.
std::uint64_t keyOf(const TokenTally& total) {
    std::uint64_t key = 0;
    for (const std::int64_t part :
         {total.input, total.output, total.thinking, total.cacheRead, total.cacheWriteUnknown}) {
        // The constant is that of hash_combine: it keeps equal parts from cancelling out.
        key ^= std::hash<std::int64_t>()(part) + 0x9e3779b97f4a7c15 + (key << 6) + (key >> 2);
    }
    return key;
}

}  // namespace

TokenTally codexTally(JsonObject& usage) {
    const auto tokens = [&](std::string_view key) {
        return memberIfPresent<std::int64_t>(usage, key).value_or(0);
    };
    TokenTally tally;
    const std::int64_t input = tokens("input_tokens");
    tally.cacheRead = std::min(tokens("cached_input_tokens"), input);
    tally.input = saturatingDifference(input, tally.cacheRead);
    tally.output = tokens("output_tokens");
    tally.thinking = tokens("reasoning_output_tokens");
    tally.cacheWriteUnknown = tokens("cache_write_input_tokens");
    return tally;
}

RolloutUsage::RolloutUsage(Calendar calendar, std::size_t givenLimit)
    : limit(givenLimit), days(calendar) {
    read.cost.agent = SessionAgent("codex");
}

Going RolloutUsage::add(std::string_view line) {
    if (thread.empty()) {
        if (auto head = RolloutHead::parse(line)) {
            thread = head->sessionId.value_or("");
            read.cost.startedBy = std::move(head->parentId);
        }
        return Going::on;
    }
    Going going = Going::on;
    forEachRolloutLine(json, line, [&](RolloutLine& record) {
        if (record.type == "turn_context") addContext(record.payload);
        if (record.type == "event_msg") going = addEvent(record.payload, record.timestamp);
    });
    return going;
}

void RolloutUsage::addContext(JsonObject& payload) {
    if (auto model = textMember(payload, "model")) read.cost.lastModel = std::move(model);
    if (auto effort = textMember(payload, "effort")) read.cost.lastEffort = std::move(effort);
}

Going RolloutUsage::addEvent(JsonObject& payload, std::string_view timestamp) {
    if (memberIfPresent<std::string_view>(payload, "type") != "token_count") return Going::on;
    auto info = memberIfPresent<JsonObject>(payload, "info");
    auto usage = info ? memberIfPresent<JsonObject>(*info, "total_token_usage") : std::nullopt;
    if (!usage) return Going::on;
    const TokenTally total = codexTally(*usage);
    if (total == counted) return Going::on;
    if (read.requests.size() >= limit) return Going::stop;
    count(total, timestamp);
    return Going::on;
}

void RolloutUsage::count(const TokenTally& total, std::string_view timestamp) {
    if (!contains(total, counted)) {
        // The thread counts from the beginning again: only the new total holds.
        read.cost.usage = {};
        read.requests.clear();
        counted = {};
    }
    const auto at = parseInternetDate(timestamp);
    read.cost.usage.add(
        {.model = read.cost.lastModel ? *read.cost.lastModel : std::string_view(),
         .day = at ? days.nameOf(*at) : std::string_view(),
         .effort = read.cost.lastEffort ? *read.cost.lastEffort : std::string_view(),
         .tally = total - counted});
    read.requests.push_back({keyOf(total), at.value_or(Date())});
    counted = total;
}

}  // namespace fleetwise
