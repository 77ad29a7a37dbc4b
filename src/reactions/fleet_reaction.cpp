#include "reactions/fleet_reaction.h"

namespace fleetwise {

std::vector<Transition> enteredStates(const std::vector<Session>& sessions,
                                      const std::map<std::string, SessionState>& previousStates,
                                      std::optional<Date> previousPass) {
    std::vector<Transition> transitions;
    if (!previousPass) return transitions;
    for (const Session& session : sessions) {
        const auto before = previousStates.find(session.id);
        if (before != previousStates.end()) {
            if (before->second != session.state) transitions.push_back({&session, before->second});
        } else if (session.isLive && session.stateSince && *session.stateSince > *previousPass) {
            transitions.push_back({&session, {}});
        }
    }
    return transitions;
}

}  // namespace fleetwise
