#pragma once

#include "foundation/date.h"
#include "sources/task_ending.h"

#include <cstdint>
#include <map>
#include <optional>
#include <string>

namespace fleetwise {

/// A session's transcript in figures. Records are counted as they stand: a request that was
/// written as several records counts once for each.
struct TranscriptStats {
    std::int64_t assistantTurns = 0;
    std::int64_t toolCalls = 0;
    std::int64_t contextTokens = 0;  ///< of the latest reply
    std::int64_t outputTokens = 0;   ///< of all replies
    std::int64_t thinkingTokens = 0;
    bool countsAreComplete = false;  ///< false: only the file's end was read
    std::optional<std::string> cwd;  ///< the first one
    std::optional<std::string> model;
    std::optional<std::string> lastReply;  ///< the latest message with prose
    std::optional<Date> lastReplyAt;
    std::optional<std::string> lastTurnOrigin;  ///< "human", "task-notification", "peer" …

    bool operator==(const TranscriptStats&) const = default;
};

/// All that one walk over a transcript tells.
struct TranscriptReading {
    TranscriptStats stats;
    std::optional<std::string> effort;              ///< of the latest reply that names one
    std::optional<std::string> federationId;        ///< of the last federation mark in a prompt
    std::map<std::string, TaskEnding> taskEndings;  ///< by the background task's id

    bool operator==(const TranscriptReading&) const = default;
};

}  // namespace fleetwise
