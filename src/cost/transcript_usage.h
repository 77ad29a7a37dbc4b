#pragma once

#include "cost/line_search.h"
#include "cost/local_days.h"
#include "cost/session_usage.h"
#include "cost/usage_line.h"

#include <cstddef>
#include <string_view>
#include <unordered_set>

namespace fleetwise {

/// Adds up what the lines of a Claude Code session's transcripts tell: its own, then those of its
/// subagents. A request counts once, by its first record.
class TranscriptUsage {
public:
    /// Whose transcript the next lines are from.
    enum class Writer { session, subagent };

    /// Counts only the first `givenLimit` requests.
    explicit TranscriptUsage(Calendar calendar, std::size_t givenLimit = allRequests)
        : limit(givenLimit), days(calendar) {}

    /// One line, followed by jsonPadding readable bytes. Stops behind the last request to count.
    LineSearch::Going add(std::string_view line, Writer writer);

    /// What all lines told. This is used up.
    SessionUsage finish() { return std::move(read); }

private:
    LineSearch::Going addReply(const UsageLine::Reply& reply, Writer writer);
    void mark(const UsageLine::Reply& reply, std::uint64_t key, std::optional<Date> at);

    const std::size_t limit;
    LocalDays days;
    JsonReader json;
    std::unordered_set<std::uint64_t> seen;  ///< keys of the requests counted
    SessionUsage read;
};

}  // namespace fleetwise
