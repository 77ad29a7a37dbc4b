#pragma once

#include "foundation/date.h"
#include "session/session_state.h"

#include <cstdint>
#include <optional>
#include <string>

namespace fleetwise {

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

    bool operator==(const CodexRollout&) const = default;
};

}  // namespace fleetwise
