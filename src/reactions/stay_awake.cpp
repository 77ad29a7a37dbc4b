#include "reactions/stay_awake.h"

#include "localisation/localisation.h"

#include <algorithm>
#include <array>
#include <utility>

namespace fleetwise {

namespace {

constexpr std::array neededTypes{PowerAssertionType::systemSleep, PowerAssertionType::displaySleep};

}  // namespace

StayAwake::StayAwake(PowerAssertions& givenAssertions) : assertions(givenAssertions) {}

void StayAwake::react(const FleetChange& change) {
    const bool isAnyBusy = std::ranges::any_of(
        change.sessions, [](SessionState state) { return isBusy(state); }, &Session::state);
    set(change.rules.staysAwake && isAnyBusy, change.now);
}

void StayAwake::set(bool on, Date now) {
    if (!on) {
        attempt.reset();
        return;
    }
    if (!isToAsk(now)) return;
    attempt = std::make_shared<Attempt>(Attempt{.askedAt = now});
    const std::string reason = localised("Fleetwise: Wach bleiben ist eingeschaltet"_text);
    for (const PowerAssertionType type : neededTypes) {
        assertions.take(type, reason, [type, asked = std::weak_ptr(attempt)](auto assertion) {
            const auto asking = asked.lock();
            if (!asking || asking->wasRefused) return;
            if (assertion) {
                asking->held[type] = std::move(assertion);
            } else {
                asking->wasRefused = true;
                asking->held.clear();
            }
        });
    }
}

bool StayAwake::isToAsk(Date now) const {
    if (!attempt) return true;
    // The clock may have been set back.
    return attempt->wasRefused && (now < attempt->askedAt || now - attempt->askedAt >= patience);
}

std::set<PowerAssertionType> StayAwake::heldTypes() const {
    if (!attempt || attempt->held.size() < neededTypes.size()) return {};
    return {neededTypes.begin(), neededTypes.end()};
}

}  // namespace fleetwise
