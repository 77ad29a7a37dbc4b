#pragma once

#include "fleet/session.h"
#include "foundation/date.h"
#include "reactions/fleet_reaction.h"
#include "reactions/notification_centre.h"
#include "usage/own_goals.h"

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>

namespace fleetwise {

/// Turns what sessions do, own limits that are reached and a reset of the five-hour window into
/// notifications. Main thread only.
class Notifier final : public FleetReaction {
public:
    /// Whether the user looks at the session's own window just now; `all` are those listed.
    using IsFocused = std::function<bool(const Session&, const std::vector<Session>& all)>;

    /// How long changes of sessions that drive themselves are gathered for one notification.
    static constexpr Seconds summaryTime{10};

    /// `centre` outlives this. Times in texts are those of `calendar`.
    Notifier(NotificationCentre& centre, Calendar calendar, IsFocused isFocused = {});

    void react(const FleetChange& change) override { report(change); }

    /// Notifies of the transitions into a state that the rules name, where the rules allow it, and
    /// takes back what a session no longer needs the user for. A question that the user seemed to
    /// look at when it came, and left without an answer, is told of then. The first call asks the
    /// centre; before it has agreed nothing is posted, and nothing is kept for later.
    void report(const FleetChange& change);

    /// A limit of the user's own that the session has reached.
    void announceBreach(const OwnGoals::Breach& breach, const Session& session);

    /// The five-hour window counts from the beginning again. Takes the place of the notice before.
    void announceWindowReset();

    bool isAuthorized() const { return *authorization; }
    bool didRequestAuthorization() const { return hasRequested; }

private:
    /// Changes of sessions that drive themselves, held back for one notification.
    struct Gathering {
        Date since;
        std::map<std::string, SessionState> states;  ///< the last one, by session id
    };

    /// What was posted about a session that needs the user.
    struct Call {
        std::string identifier;
        SessionState state = SessionState::unknown;
    };

    void requestAuthorizationOnce();
    void postWhatIsNoLongerSpared(const FleetChange& change);
    void withdrawWhatIsAnswered(const std::vector<Session>& sessions);
    void gather(const Session& session, Date now);
    void postGathered(const FleetChange& change);
    bool isSpared(const Session& session, const FleetChange& change) const;
    void post(const Session& session, Date now);
    void postSummary(const std::vector<const Session*>& sessions, Date now);

    NotificationCentre& centre;
    const Calendar calendar;
    const IsFocused isFocused;
    /// Shared with the centre, which may answer when this is gone.
    std::shared_ptr<bool> authorization = std::make_shared<bool>(false);
    bool hasRequested = false;
    std::optional<Gathering> gathering;
    std::map<std::string, Call> calls;  ///< by session id; only of sessions that are listed
    /// By session id, the questions that the user seemed to look at when they came.
    std::map<std::string, SessionState> spared;
};

}  // namespace fleetwise
