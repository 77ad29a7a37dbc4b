#pragma once

#include <string_view>
#include <vector>

namespace fleetwise::demo {

/// What a Codex session does at one moment.
enum class CodexMove {
    begins,         ///< a turn, on a prompt
    thinks,         ///< about a text
    runs,           ///< a command
    delegates,      ///< a task to a sub-agent
    receives,       ///< what came of a command or a task
    answers,        ///< which ends the turn
    fails,          ///< which ends the turn, with a message
    isInterrupted,  ///< which ends the turn
};

enum class CodexDoer {
    session,
    subagent,  ///< of the session: begun by its first turn, ended with its answer
};

struct CodexStep {
    CodexMove move;
    std::string_view text;
    int rest = 0;  ///< how many of its turns the session then lets pass
    CodexDoer doer = CodexDoer::session;
};

using CodexScene = std::vector<CodexStep>;

/// What Codex sessions are seen doing. Each scene can follow any other.
const std::vector<CodexScene>& codexScenes();

}  // namespace fleetwise::demo
