#include "cost/transcript_usage.h"

#include <functional>

namespace fleetwise {

namespace {

using Going = LineSearch::Going;

std::uint64_t hashOf(std::string_view key) {
    return std::hash<std::string_view>()(key);
}

}  // namespace

Going TranscriptUsage::add(std::string_view line, Writer writer) {
    UsageLine found = UsageLine::parse(json, line);
    if (found.reply) return addReply(*found.reply, writer);
    // The report covers the whole session, its subagents included.
    if (found.bill && writer == Writer::session) {
        read.cost.billedUSD = found.bill->totalUSD;
        read.cost.billedModels = std::move(found.bill->models);
    }
    return Going::on;
}

Going TranscriptUsage::addReply(const UsageLine::Reply& reply, Writer writer) {
    // Without a key every record is a request of its own; in a copy it still has its time.
    const std::uint64_t key = reply.key
                                  ? hashOf(*reply.key)
                                  : hashOf(reply.timestamp.value_or("")) + read.requests.size();
    if (reply.key && seen.contains(key)) return Going::on;
    if (writer == Writer::session && read.requests.size() >= limit) return Going::stop;
    if (reply.key) seen.insert(key);
    const auto at = reply.timestamp ? parseInternetDate(*reply.timestamp) : std::nullopt;
    read.cost.usage.add({.model = reply.model,
                         .day = at ? days.nameOf(*at) : std::string_view(),
                         .effort = reply.effort.value_or(""),
                         .tally = reply.tally});
    if (writer == Writer::session) mark(reply, key, at);
    return Going::on;
}

void TranscriptUsage::mark(const UsageLine::Reply& reply, std::uint64_t key,
                           std::optional<Date> at) {
    if (read.requests.empty()) read.firstKey = reply.key.value_or("");
    read.requests.push_back({key, at.value_or(Date())});
    read.cost.lastModel = std::string(reply.model);
    if (reply.effort) read.cost.lastEffort = std::string(*reply.effort);
}

}  // namespace fleetwise
