#pragma once

#include "reactions/fleet_reaction.h"

#include <cstddef>
#include <map>
#include <string>
#include <vector>

namespace fleetwise {

/// Keeps which states each listed session has gone through since this program started. Main thread
/// only.
class StateTimeline final : public FleetReaction {
public:
    /// A state that lasted until the next span began; the last one lasts.
    struct Span {
        SessionState state = SessionState::unknown;
        Date since;

        bool operator==(const Span&) const = default;
    };

    /// Of one session; the oldest go first.
    static constexpr std::size_t mostSpans = 500;

    void react(const FleetChange& change) override;

    /// The oldest first; empty for a session that is not listed.
    const std::vector<Span>& spans(const std::string& sessionId) const;

private:
    std::map<std::string, std::vector<Span>> bySession;
};

}  // namespace fleetwise
