#pragma once

#include "fleet/session.h"
#include "foundation/date.h"
#include "reactions/notification_centre.h"
#include "usage/own_goals.h"

namespace fleetwise {

/// Tells the user of what happens to quota and own limits. Main thread only.
class Notifier {
public:
    /// `givenCentre` outlives this.
    explicit Notifier(NotificationCentre& givenCentre) : centre(givenCentre) {}

    /// A limit of the user's own that the session has reached.
    void announceBreach(const OwnGoals::Breach& breach, const Session& session);

    /// The five-hour window counts from the beginning again. Takes the place of the notice before.
    void announceWindowReset();

private:
    NotificationCentre& centre;
};

}  // namespace fleetwise
