#pragma once

#include "fleet/session.h"
#include "reactions/reaction_rules.h"

#include <map>
#include <optional>
#include <string>
#include <vector>

namespace fleetwise {

/// A session that entered its state since the pass before.
struct Transition {
    const Session* session = nullptr;
    std::optional<SessionState> previous;  ///< nothing for a session that was not listed then
};

/// What one pass brought, against the one before it. Lives for the time of a call.
struct FleetChange {
    const std::vector<Session>& sessions;  ///< the new list, sorted by Session::precedes
    /// By session id, of the pass before; empty at the first.
    const std::map<std::string, SessionState>& previousStates;
    const std::vector<Transition>& transitions;  ///< in the order of the list; see enteredStates
    const ReactionRules& rules;
    Date now;
};

/// The sessions whose state differs from that of the pass before, and those that run, were not
/// listed then, and entered their state after that pass: others that appear were only hidden.
/// Nothing where there was no pass before. They point into `sessions`.
std::vector<Transition> enteredStates(const std::vector<Session>& sessions,
                                      const std::map<std::string, SessionState>& previousStates,
                                      std::optional<Date> previousPass);

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
