#pragma once

#include "cost/line_search.h"
#include "cost/local_days.h"
#include "cost/session_cost.h"
#include "cost/usage_line.h"

#include <cstddef>
#include <limits>
#include <string_view>
#include <unordered_set>

namespace fleetwise {

/// For readers that can be told to stop behind a number of requests.
inline constexpr std::size_t allRequests = std::numeric_limits<std::size_t>::max();

/// Adds up what the lines of a Claude Code session's transcripts tell: its own, then those of its
/// subagents. A request counts once, by its first record.
class TranscriptUsageReader {
public:
    /// Whose transcript the next lines are from.
    enum class Writer { session, subagent };

    /// Counts only the first `givenLimit` requests of the session's own.
    explicit TranscriptUsageReader(Calendar calendar, std::size_t givenLimit = allRequests)
        : limit(givenLimit), days(calendar) {}

    /// One line, followed by jsonPadding readable bytes. Stops behind the last request to count.
    LineSearch::Going add(std::string_view line, Writer writer);

    /// What all lines told. This is used up.
    SessionCost finish() { return std::move(read); }

private:
    LineSearch::Going addReply(const UsageLine::Reply& reply, Writer writer);
    void note(const UsageLine::Reply& reply);

    const std::size_t limit;
    LocalDays days;
    JsonReader json;
    std::unordered_set<std::size_t> seen;  ///< hashes of the keys of the requests counted
    SessionCost read;
};

}  // namespace fleetwise
