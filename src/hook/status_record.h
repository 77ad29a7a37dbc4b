#pragma once

#include "hook/bounded_list.h"
#include "session/session_state.h"

#include <optional>
#include <string_view>

namespace fleetwise::hook {

/// Something the user is asked for and has not answered yet.
struct Request {
    std::string_view agent;  ///< the subagent that asks; empty for the session itself
    std::string_view tool;   ///< empty where no tool's call waits for the answer
    std::string_view activity;
    std::string_view message;
    SessionState state = SessionState::waiting;  ///< `decision` or `waiting`
    double at = 0;
};

/// A command that runs in the background.
struct Launch {
    std::string_view id;
    std::string_view command;
    std::optional<double> at;
};

/// A running watch.
struct Watch {
    std::string_view id;
    std::string_view label;
    double since = 0;
};

/// What a status file says about one session. Times are seconds since 1970; an empty text is a key
/// that is not there. All texts are views into the old file or the event's payload.
struct StatusRecord {
    std::string_view sessionId;
    std::string_view event;
    std::string_view agent;
    std::string_view tool;
    std::string_view activity;
    std::string_view message;  ///< the session's own; what is shown is the latest request's
    std::string_view cwd;
    std::string_view permissionMode;
    std::string_view error;  ///< code of the error that ended the turn

    /// The state of the session itself. What is shown is the latest request's, where there is one.
    SessionState state = SessionState::unknown;
    std::optional<double> decidedAt;  ///< when the event happened that decided that state
    std::optional<double> stateTs;    ///< the same, or when the last request was answered
    double eventTs = 0;
    std::optional<double> turnStartedAt;
    std::optional<double> doneAt;
    std::optional<double> wakeupAt;

    BoundedList<std::string_view, 512> subagents;  ///< their ids
    BoundedList<Launch, 64> background;
    BoundedList<Watch, 64> monitors;
    BoundedList<Request, 16> requests;  ///< oldest first
};

/// The state that the file shows.
inline SessionState shownState(const StatusRecord& record) {
    return record.requests.isEmpty() ? record.state : record.requests.all().back().state;
}

/// When the event happened that the shown state rests on.
inline std::optional<double> shownStateTs(const StatusRecord& record) {
    return record.requests.isEmpty() ? record.stateTs : record.requests.all().back().at;
}

/// Whether something recorded at the time `recorded` overtook an event of the time `now`. Where it
/// is longer ahead than any hook waits, the clock was set back.
inline bool hasOvertaken(std::optional<double> recorded, double now) {
    constexpr double longestDelay = 11;
    return recorded && now < *recorded && *recorded - now < longestDelay;
}

}  // namespace fleetwise::hook
