#pragma once

#include "foundation/date.h"
#include "reactions/fleet_reaction.h"
#include "reactions/power_assertions.h"

#include <map>
#include <memory>
#include <set>

namespace fleetwise {

/// Keeps machine and screen awake while sessions work, where the user wants that. Main thread
/// only.
class StayAwake final : public FleetReaction {
public:
    /// How long after the system refused it is asked again.
    static constexpr Seconds patience{60};

    /// `assertions` outlives this.
    explicit StayAwake(PowerAssertions& assertions);

    /// On while the rules want it and a session is busy.
    void react(const FleetChange& change) override;

    /// Takes both assertions, or lets go of them; either both are held or none. Repeating it
    /// changes nothing.
    void set(bool on, Date now);

    std::set<PowerAssertionType> heldTypes() const;
    bool isHeld() const { return !heldTypes().empty(); }

private:
    /// One time of asking for both.
    struct Attempt {
        Date askedAt;
        bool wasRefused = false;
        std::map<PowerAssertionType, std::unique_ptr<PowerAssertion>> held;
    };

    bool isToAsk(Date now) const;

    PowerAssertions& assertions;
    /// Null while off. Answers that come when it is gone find nothing to be kept in.
    std::shared_ptr<Attempt> attempt;
};

}  // namespace fleetwise
