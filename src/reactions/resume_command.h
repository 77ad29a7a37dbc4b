#pragma once

#include "session/session_agent.h"

#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace fleetwise {

/// The shell command that takes a session up again in a terminal. Pure functions.
class ResumeCommand {
public:
    /// Whether a file stands at the path.
    using Exists = std::function<bool(const std::string& path)>;

    /// The word so that a POSIX shell takes it for exactly this one argument: as it is where it is
    /// harmless, in single quotes else.
    static std::string shellArgument(std::string_view word);

    /// Where the Codex program is: the first of the places it is installed to, by itself or by its
    /// desktop app, that exists; "codex" where none does.
    static std::string codexExecutable(const std::string& home, const Exists& exists);

    /// Where the Claude Code program is when it is not on PATH, as that of a desktop often lacks
    /// the folder: the first of the places it is installed to that exists; "claude" where none
    /// does.
    static std::string claudeExecutable(const std::string& home, const Exists& exists);

    /// Whether the agent takes the id for one: not for a switch, and not for none.
    static bool isSafe(std::string_view sessionId);

    /// Without the change to the session's folder; `program` is the agent's. Nothing for an agent
    /// whose sessions cannot be taken up again, and for an id that is not safe.
    static std::optional<std::string> resumeOnly(std::string_view sessionId,
                                                 const SessionAgent& agent,
                                                 std::string_view program);

    /// For people to type: with "claude" or with what codexExecutable gives, and in the session's
    /// folder where its full path is known.
    static std::optional<std::string> text(std::string_view sessionId,
                                           const std::optional<std::string>& cwd,
                                           const SessionAgent& agent, std::string_view codex);
};

}  // namespace fleetwise
