#pragma once

#include "foundation/date.h"
#include "session/session_state.h"

#include <cstdint>
#include <optional>
#include <string>

namespace fleetwise {

/// Whose a rollout is, by its meta line.
enum class RolloutKind {
    session,   ///< a session of the user's
    fork,      ///< continues a copy of another session's history
    subagent,  ///< the work of an agent that another session started
};

/// A Codex session as its rollout file tells it.
struct CodexRollout {
    std::string sessionId;
    std::optional<std::string> cwd;
    std::optional<std::string> title;  ///< the thread's name, where the user gave one
    SessionState state = SessionState::idle;
    std::optional<Date> startedAt;
    Date lastEventAt;
    std::int64_t contextTokens = 0;
    std::int64_t outputTokens = 0;
    std::optional<std::int64_t> contextWindow;  ///< in tokens
    std::optional<std::string> originator;      ///< which Codex client wrote it
    std::optional<std::string> source;          ///< where the session was started

    RolloutKind kind = RolloutKind::session;
    std::optional<std::string> parentId;  ///< the session that a fork or a subagent comes from
    std::optional<Date> stateSince;       ///< when `state` began
    std::optional<Date> turnStartedAt;
    std::optional<std::string> activity;  ///< what was done last in the turn that runs
    std::optional<std::string> model;
    std::optional<std::string> effort;
    std::optional<std::string> firstPrompt;  ///< as the user typed it
    std::optional<std::string> lastReply;    ///< of the agent, at the end of its last turn
    std::optional<std::string> failure;      ///< why the last turn failed
    std::string fileName;                    ///< without its folder
    Date modifiedAt;                         ///< when the file was last written

    bool operator==(const CodexRollout&) const = default;
};

}  // namespace fleetwise
