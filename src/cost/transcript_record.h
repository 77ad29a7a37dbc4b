#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace fleetwise {

class JsonReader;

/// Who sent a user record: "human", "task-notification", "peer" …
struct TranscriptOrigin {
    std::optional<std::string_view> kind;  ///< "peer" where only a "body" stands
};

/// What a reply used, in tokens; absent counts are 0.
struct TranscriptUsage {
    std::int64_t inputTokens = 0;
    std::int64_t outputTokens = 0;
    std::int64_t thinkingTokens = 0;
    std::int64_t cacheReadTokens = 0;
    std::int64_t cacheCreationTokens = 0;
};

struct TranscriptMessage {
    std::optional<std::string_view> model;
    std::vector<std::string_view> texts;  ///< its prose in order; nothing of tools or thinking
    std::int64_t toolCalls = 0;
    std::optional<TranscriptUsage> usage;
};

/// One line of a Claude Code transcript, as far as the session list looks at it: a JSON object
/// with "type" and, depending on it, the members below. Agents write many more, and what is absent
/// or of another type than expected counts as absent. Views live until the reader's next text.
struct TranscriptRecord {
    enum class Type { other, user, assistant, queueOperation };

    Type type = Type::other;
    bool isMeta = false;            ///< written by the agent in the user's place
    bool isCompactSummary = false;  ///< a summary of what was compacted away
    bool isSidechain = false;       ///< belongs to a subagent
    std::optional<std::string_view> cwd;
    std::optional<std::string_view> timestamp;
    std::optional<std::string_view> effort;
    std::optional<TranscriptOrigin> origin;
    std::optional<TranscriptMessage> message;
    std::optional<std::string_view> content;  ///< of a queue operation: the queued prompt
    std::optional<std::string_view> customTitle;
    std::optional<std::string_view> aiTitle;
    std::optional<std::string_view> lastPrompt;

    /// Reads one line that is followed by jsonPadding readable bytes; nothing where it is not one
    /// JSON object.
    static std::optional<TranscriptRecord> parse(JsonReader& json, std::string_view line);

    /// Whether a person, or another agent in a person's place, began a turn with this record.
    bool isPrompt() const;

    /// What was typed there, freed of markers and of what agents add to it; nothing where this
    /// record is no prompt or nothing remains.
    std::optional<std::string> prompt() const;

    /// The texts of the message joined by newlines; nothing where they are blank.
    std::optional<std::string> prose() const;
};

}  // namespace fleetwise
