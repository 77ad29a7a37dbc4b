#pragma once

#include "reactions/notification_policy.h"
#include "reactions/state_action.h"
#include "session/session_state.h"

#include <set>
#include <string>
#include <vector>

namespace fleetwise {

/// What the user's settings say of reactions.
struct ReactionRules {
    bool notificationsEnabled = true;
    bool isMuted = false;                    ///< neither notifications nor sounds
    std::set<SessionState> notifyingStates;  ///< the states the user wants to hear of
    NotificationPolicy::Overrides overrides;
    bool newSessionsNotify = true;          ///< what holds where there is no override
    bool summarizesSelfDriven = false;      ///< one notification for what drives itself
    bool sparesFocusedSession = true;       ///< none for the session that the user looks at
    std::string doneSound;                  ///< see SoundPlayer
    std::string waitingSound;               ///< see SoundPlayer
    std::vector<StateAction> stateActions;  ///< in the order they run
    std::string webhookURL;                 ///< empty: none
    bool staysAwake = false;                ///< while sessions work
};

}  // namespace fleetwise
