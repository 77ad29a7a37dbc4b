#include "cost/transcript_usage_reader.h"

#include <fmt/format.h>

#include <functional>

namespace fleetwise {

namespace {

using Going = LineSearch::Going;

}  // namespace

Going TranscriptUsageReader::add(std::string_view line, Writer writer) {
    UsageLine found = UsageLine::parse(json, line);
    if (found.reply) return addReply(*found.reply, writer);
    // The report covers the whole session, its subagents included.
    if (found.bill && writer == Writer::session) {
        read.billedUSD = found.bill->totalUSD;
        read.billedModels = std::move(found.bill->models);
    }
    return Going::on;
}

Going TranscriptUsageReader::addReply(const UsageLine::Reply& reply, Writer writer) {
    const std::size_t key = std::hash<std::string_view>()(reply.key.value_or(""));
    // Without a key every record is a request of its own.
    if (reply.key && seen.contains(key)) return Going::on;
    if (writer == Writer::session && read.trail.size() >= limit) return Going::stop;
    if (reply.key) seen.insert(key);
    const auto at = reply.timestamp ? parseInternetDate(*reply.timestamp) : std::nullopt;
    read.usage.add({.model = reply.model,
                    .day = at ? days.nameOf(*at) : std::string_view(),
                    .effort = reply.effort.value_or(""),
                    .tally = reply.tally});
    if (writer == Writer::session) note(reply);
    return Going::on;
}

void TranscriptUsageReader::note(const UsageLine::Reply& reply) {
    if (read.trail.size() == 0) read.family = reply.key.value_or("");
    if (reply.key) {
        read.trail.add(*reply.key);
    } else {
        // A copy of it has the same time and the same figures.
        read.trail.add(fmt::format("{} {} {}", reply.timestamp.value_or(""), reply.tally.input,
                                   reply.tally.output));
    }
    read.lastModel = std::string(reply.model);
    if (reply.effort) read.lastEffort = std::string(*reply.effort);
}

}  // namespace fleetwise
