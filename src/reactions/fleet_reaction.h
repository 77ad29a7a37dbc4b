#pragma once

#include "fleet/session.h"

#include <map>
#include <set>
#include <string>
#include <vector>

namespace fleetwise {

/// What one pass brought, against the one before it. Lives for the time of a call.
struct FleetChange {
    const std::vector<Session>& sessions;  ///< the new list, sorted by Session::precedes
    /// By session id, of the pass before; empty at the first.
    const std::map<std::string, SessionState>& previousStates;
    const std::set<SessionState>& notifyingStates;  ///< the states the user wants to hear of
    Date now;
};

/// Something that follows from changes of the fleet. Called on the main thread after every pass,
/// also when nothing changed; must not wait for anything.
class FleetReaction {
public:
    FleetReaction() = default;
    FleetReaction(const FleetReaction&) = delete;
    FleetReaction& operator=(const FleetReaction&) = delete;
    virtual ~FleetReaction() = default;

    virtual void react(const FleetChange& change) = 0;
};

}  // namespace fleetwise
