#pragma once

#include "foundation/date.h"
#include "foundation/skip_tally.h"

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace fleetwise {

/// What Claude Code leaves of the agents that a session started: beside its transcript a folder of
/// the session's name with "subagents/agent-<id>.jsonl", the agent's own transcript, and
/// "agent-<id>.meta.json" with `agentType`, `description` and, at the end, `finished`. Pure
/// functions over the files.
class SubagentFiles {
public:
    struct Agent {
        std::string kind;         ///< "Explore", "general-purpose" …; may be empty
        std::string description;  ///< what it is to do; may be empty
        Date lastActivityAt;      ///< when its transcript was last written
        bool isFinished = false;

        bool operator==(const Agent&) const = default;
    };

    /// The latest are listed, up to this many.
    static constexpr std::size_t mostAgents = 100;

    /// Those of the session with this transcript, the latest first. One without a description that
    /// can be read is listed all the same.
    static std::vector<Agent> list(const std::string& transcriptPath, SkipTally& skipped);

    /// What the text of a meta file tells, which jsonPadding readable bytes must follow.
    static std::optional<Agent> decode(std::string_view padded);
};

}  // namespace fleetwise
