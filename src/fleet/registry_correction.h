#pragma once

#include "session/session_state.h"
#include "sources/session_registry.h"

#include <optional>

namespace fleetwise {

/// A state, and what told it.
struct StateFinding {
    SessionState state = SessionState::unknown;
    /// When the agent's registry set it; nothing where the hook's record stands.
    std::optional<Date> toldByRegistryAt;
    /// The registry contradicts the record, but only just now: the next event may settle it, so
    /// the record stands and the session wants another look a second later.
    bool isUnsettled = false;

    bool operator==(const StateFinding&) const = default;
};

/// The state of a live session from the hook's record and the agent's own registry entry. The
/// registry tells what no event does: an interrupt, an answered or refused question, and
/// everything where the hook is not installed. It is believed only where it is newer than
/// `recordedAt`, the time of the event that the recorded state rests on, and has stood for a
/// second; it never turns `done` or `failed` into `idle`.
StateFinding reconciledState(std::optional<SessionState> recorded, std::optional<Date> recordedAt,
                             const SessionRegistry::Entry& entry, Date now);

}  // namespace fleetwise
