#include "cost/rollout_usage_reader.h"

#include "sources/rollout_head.h"
#include "sources/rollout_line.h"

#include <fmt/format.h>

#include <algorithm>

namespace fleetwise {

namespace {

bool contains(const TokenTally& total, const TokenTally& part) {
    bool isContained = true;
    static_cast<void>(total.combined(part, [&](std::int64_t whole, std::int64_t share) {
        isContained = isContained && whole >= share;
        return whole;
    }));
    return isContained;
}

/// Tells totals apart: two threads with the same ones have the same past.
std::string keyOf(const TokenTally& total) {
    return fmt::format("{} {} {} {} {}", total.input, total.output, total.thinking, total.cacheRead,
                       total.cacheWriteUnknown);
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

RolloutUsageReader::RolloutUsageReader(Calendar calendar) : days(calendar) {
    read.agent = SessionAgent("codex");
}

RolloutUsageReader::RolloutUsageReader(Calendar calendar, std::size_t requests)
    : limit(requests), days(calendar) {
    read.agent = SessionAgent("codex");
}

void RolloutUsageReader::add(std::string_view line) {
    if (thread.empty()) {
        if (auto head = RolloutHead::parse(line)) {
            thread = head->sessionId.value_or("");
            read.startedBy = std::move(head->parentId);
        }
        return;
    }
    forEachRolloutLine(json, line, [&](RolloutLine& record) {
        if (record.type == "turn_context") addContext(record.payload);
        if (record.type == "event_msg") addEvent(record.payload, record.timestamp);
    });
}

SessionCost RolloutUsageReader::finish() {
    return readToLimit ? *std::move(readToLimit) : std::move(read);
}

void RolloutUsageReader::addContext(JsonObject& payload) {
    if (auto model = textMember(payload, "model")) read.lastModel = std::move(model);
    if (auto effort = textMember(payload, "effort")) read.lastEffort = std::move(effort);
}

void RolloutUsageReader::addEvent(JsonObject& payload, std::string_view timestamp) {
    if (memberIfPresent<std::string_view>(payload, "type") != "token_count") return;
    auto info = memberIfPresent<JsonObject>(payload, "info");
    auto usage = info ? memberIfPresent<JsonObject>(*info, "total_token_usage") : std::nullopt;
    if (!usage) return;
    const TokenTally total = codexTally(*usage);
    if (total != counted) count(total, timestamp);
}

void RolloutUsageReader::count(const TokenTally& total, std::string_view timestamp) {
    if (!contains(total, counted)) {
        // The thread counts from the beginning again: only the new total holds.
        read.usage = {};
        read.trail.clear();
        readToLimit.reset();
        counted = {};
    }
    const auto at = parseInternetDate(timestamp);
    read.usage.add({.model = read.lastModel ? *read.lastModel : std::string_view(),
                    .day = at ? days.nameOf(*at) : std::string_view(),
                    .effort = read.lastEffort ? *read.lastEffort : std::string_view(),
                    .tally = total - counted});
    read.trail.add(keyOf(total));
    counted = total;
    if (read.trail.size() == limit) readToLimit = read;
}

}  // namespace fleetwise
