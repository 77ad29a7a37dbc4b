#include "session/session_state.h"

namespace fleetwise {

namespace {

/// In the order of SessionState.
constexpr std::array<std::string_view, allSessionStates.size()> rawValues{
    "decision",   "waiting", "failed",    "done",    "working", "waitingForSubagents",
    "compacting", "idle",    "scheduled", "unknown", "dormant",
};

}  // namespace

std::string_view rawValue(SessionState state) {
    return rawValues[static_cast<std::size_t>(state)];
}

std::optional<SessionState> sessionStateFrom(std::string_view rawValue) {
    for (const SessionState state : allSessionStates) {
        if (fleetwise::rawValue(state) == rawValue) return state;
    }
    return {};
}

}  // namespace fleetwise
