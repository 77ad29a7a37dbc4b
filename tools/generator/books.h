#pragma once

#include "foundation/date.h"
#include "foundation/json.h"
#include "sources/codex_rollout.h"

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace fleetwise::generator {

/// What one model was asked for: each request once, however many records it was written as.
struct Usage {
    std::int64_t requests = 0;
    std::int64_t input = 0;
    std::int64_t output = 0;
    std::int64_t thinking = 0;
    std::int64_t cacheRead = 0;
    std::int64_t cacheWrite5m = 0;
    std::int64_t cacheWrite1h = 0;

    bool operator==(const Usage&) const = default;

    Usage& operator+=(const Usage& more) {
        requests += more.requests;
        input += more.input;
        output += more.output;
        thinking += more.thinking;
        cacheRead += more.cacheRead;
        cacheWrite5m += more.cacheWrite5m;
        cacheWrite1h += more.cacheWrite1h;
        return *this;
    }
};

/// What the desktop app keeps about a session of its own.
struct DesktopBook {
    std::string path;  ///< of the metadata file
    std::string title;
    bool isArchived = false;
    std::optional<std::string> error;  ///< code of the error that ended the last turn
};

/// What was written for one Claude Code session. The counts per record (turns, tool calls, tokens)
/// cover the whole transcript and count a request once for each of its records.
struct SessionBook {
    std::string id;
    std::string cwd;
    std::string projectFolder;  ///< full path of the folder the transcript lies in
    std::string transcriptPath;
    std::int64_t transcriptBytes = 0;
    bool isLive = false;
    std::string state;  ///< what it shows at Plan::now, a raw SessionState
    std::string entrypoint;
    Date startedAt;
    Date lastActivityAt;              ///< the transcript's modification date
    std::int64_t assistantTurns = 0;  ///< assistant records
    std::int64_t toolCalls = 0;
    std::int64_t contextTokens = 0;  ///< of the last request
    std::int64_t outputTokens = 0;
    std::int64_t thinkingTokens = 0;
    std::string model;       ///< in the last assistant record; "<synthetic>" in one of an error
    std::string lastReply;   ///< text of the last assistant record that has any
    std::string lastPrompt;  ///< what a person, or the caller of print mode, asked last
    std::string permissionMode;
    std::optional<std::string> title;
    std::optional<std::string> name;  ///< given by the user; then also the title
    std::optional<std::string> lastTurnOrigin;
    std::optional<std::string> gitBranch;
    std::int64_t tasks = 0;
    std::int64_t tasksCompleted = 0;
    std::map<std::string, Usage> usageByModel;           ///< of this transcript
    std::map<std::string, Usage> subagentUsageByModel;   ///< of all its subagents' transcripts
    std::optional<std::string> forkedFrom;               ///< id of the session it was copied from
    std::int64_t inheritedRequests = 0;                  ///< of the copied part
    std::map<std::string, Usage> inheritedUsageByModel;  ///< of the copied part; in `usageByModel`
    double billedUSD = 0;                                ///< as the last cost-state record says
    std::optional<DesktopBook> desktop;
};

/// What was written for one Codex session. A fork's tokens include those of the copied history.
struct RolloutBook {
    std::string id;
    RolloutKind kind = RolloutKind::session;
    std::string parentId;  ///< of the session it was copied from; empty where it is a user's own
    std::string nickname;  ///< of a sub-agent
    std::string path;
    std::string cwd;
    std::string state;  ///< a raw SessionState
    std::string model;
    std::string originator;
    std::string source;
    std::optional<std::string> title;
    Date startedAt;
    Date lastEventAt;
    std::int64_t contextWindow = 0;
    std::int64_t lastInputTokens = 0;  ///< of the last request; cached ones included
    std::int64_t inputTokens = 0;      ///< of the whole session; cached ones included
    std::int64_t cachedInputTokens = 0;
    std::int64_t cacheWriteTokens = 0;
    std::int64_t outputTokens = 0;
    std::int64_t reasoningTokens = 0;
};

/// The exact account of a generated home.
struct Books {
    std::vector<SessionBook> sessions;
    std::vector<RolloutBook> rollouts;            ///< users' own, sub-agents', forks
    std::vector<std::string> compressedRollouts;  ///< paths
    std::int64_t transcriptBytes = 0;
    std::int64_t rolloutBytes = 0;  ///< without compressed ones
};

/// The books as one JSON object; keys as the fields, dates in seconds since 1970.
Json encodeBooks(const Books& books);

}  // namespace fleetwise::generator
