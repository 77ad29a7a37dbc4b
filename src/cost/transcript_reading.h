#pragma once

#include "cost/transcript_record.h"
#include "foundation/date.h"
#include "sources/task_ending.h"

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

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

/// Adds the lines of a transcript, in order, to a reading.
class TranscriptReadingBuilder {
public:
    explicit TranscriptReadingBuilder(TranscriptReading soFar) : reading(std::move(soFar)) {}

    /// One line, followed by jsonPadding readable bytes. What is not a JSON object is passed over.
    void add(std::string_view line);

    /// The reading with all lines added. The builder is used up.
    TranscriptReading finish();

private:
    void addUser(const TranscriptRecord& record);
    void addAssistant(const TranscriptRecord& record);
    void addUsage(const TranscriptUsage& usage);
    void addSentText(std::string_view text, const TranscriptRecord& record);

    JsonReader json;
    TranscriptReading reading;
    /// When the latest reply of these lines was written, empty where it does not say: parsed once
    /// at the end, not for every reply.
    std::optional<std::string> lastReplyTimestamp;
};

}  // namespace fleetwise
