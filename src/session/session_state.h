#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace fleetwise {

/// What a session is doing, the most urgent first. The order is the index that lists sort by and
/// that demandsAttention and isBusy are defined on.
enum class SessionState {
    decision,
    waiting,
    failed,
    done,
    working,
    waitingForSubagents,
    compacting,
    idle,
    scheduled,
    unknown,
    dormant,
};

inline constexpr std::array allSessionStates{
    SessionState::decision,   SessionState::waiting, SessionState::failed,
    SessionState::done,       SessionState::working, SessionState::waitingForSubagents,
    SessionState::compacting, SessionState::idle,    SessionState::scheduled,
    SessionState::unknown,    SessionState::dormant,
};

/// The state's name in files and settings: the enumerator's own name.
std::string_view rawValue(SessionState state);

/// The state with exactly this raw value.
std::optional<SessionState> sessionStateFrom(std::string_view rawValue);

/// Whether a recorded state stands for `done`: a session that is "working" since its last subagent
/// stopped, of which no other event tells. `event` is the one that the record rests on.
constexpr bool isThroughWithSubagents(SessionState state, std::string_view event,
                                      std::int64_t subagents) {
    return state == SessionState::working && event == "SubagentStop" && subagents == 0;
}

/// In the interface language.
std::string label(SessionState state);
std::string shortLabel(SessionState state);

/// The user is needed: the first four states.
constexpr bool demandsAttention(SessionState state) {
    return state <= SessionState::done;
}

/// The agent is at work: the three states after those.
constexpr bool isBusy(SessionState state) {
    return state >= SessionState::working && state <= SessionState::compacting;
}

}  // namespace fleetwise
